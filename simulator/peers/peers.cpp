#include "simulator/peers/peers.hpp"

#include "simulator/peers/peer_table.hpp"
#include "simulator/peers/system_manager.hpp"

namespace xpon::simulator {
namespace {

std::unique_ptr<Peer> make_peer(const PeerDescription& description, Simulation& simulation) {
    if (description.address == ipc::peers::system_manager) {
        return std::make_unique<SystemManager>(description, simulation);
    }
    return std::make_unique<Peer>(description, simulation);
}

} // namespace

Peers::Peers(Simulation& simulation) {
    for (const auto& description : peer_table) {
        slots_.push_back({make_peer(description, simulation)});
    }
}

core::Result<void> Peers::update(ipc::IServer& server) {
    for (auto& [peer, is_served] : slots_) {
        const bool is_up = peer->is_up();
        if (is_up && !is_served) {
            BOOST_OUTCOME_TRY(server.bind(peer->description().address, *peer));
            peer->start();
        } else if (!is_up && is_served) {
            BOOST_OUTCOME_TRY(server.unbind(peer->description().address));
            peer->end();
        }
        is_served = is_up;
    }
    return core::success();
}

} // namespace xpon::simulator
