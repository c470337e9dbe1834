#include "simulator/peers/peers.hpp"

#include "simulator/peers/peer.hpp"
#include "simulator/peers/peer_table.hpp"
#include "simulator/peers/system_manager.hpp"

#include <string_view>

namespace xpon::simulator {
namespace {

std::unique_ptr<ipc::IPeerHandler> make_handler(std::string_view peer, const EventLog& events) {
    if (peer == "system-mgr") {
        return std::make_unique<SystemManager>(events);
    }
    return std::make_unique<Peer>();
}

} // namespace

Peers::Peers(const EventLog& events) {
    for (const auto& peer : peer_table) {
        handlers_.push_back(make_handler(peer.name, events));
    }
}

core::Result<void> Peers::bind_to(ipc::IServer& server) {
    for (std::size_t peer = 0; peer < peer_table.size(); ++peer) {
        BOOST_OUTCOME_TRY(server.bind(peer_table.at(peer).address, *handlers_.at(peer)));
    }
    return core::success();
}

} // namespace xpon::simulator
