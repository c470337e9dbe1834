#include "simulator/peers/peers.hpp"

#include "simulator/peers/peer_table.hpp"

namespace xpon::simulator {
Peers::Peers(Simulation& simulation) {
    for (const auto& description : peer_table) {
        slots_.push_back({std::make_unique<Peer>(description, simulation)});
    }
    simulation.on_events([this](std::span<const Event> events) { log(events); });
}

void Peers::log(std::span<const Event> events) const {
    for (const auto& slot : slots_) {
        if (slot.peer->is_up()) {
            slot.peer->log(events);
        }
    }
}

core::Result<void> Peers::update(ipc::IServer& server) {
    for (auto& slot : slots_) {
        BOOST_OUTCOME_TRY(update(slot, server));
    }
    return core::success();
}

core::Result<void> Peers::update(Slot& slot, ipc::IServer& server) {
    auto& [peer, is_running, is_served] = slot;
    const auto address = peer->description().address;
    const bool is_up = peer->is_up();
    if (is_up && !is_served) {
        BOOST_OUTCOME_TRY(server.bind(address, *peer));
        is_served = true;
    }
    if (is_up != is_running) {
        is_running = is_up;
        is_up ? peer->start() : peer->end();
    }
    if (!is_up && is_served && !peer->has_just_answered()) {
        BOOST_OUTCOME_TRY(server.unbind(address));
        is_served = false;
    }
    return core::success();
}

} // namespace xpon::simulator
