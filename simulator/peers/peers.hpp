#pragma once

#include "simulator/peers/peer.hpp"
#include "simulator/simulation/simulation.hpp"
#include "xpon/core/result.hpp"
#include "xpon/peer_side/server.hpp"

#include <memory>
#include <span>
#include <vector>

namespace xpon::simulator {

/// All peer daemons of one OLT. The simulation, whose last event comes before the end of this object, outlives it; it
/// outlives the server.
class Peers {
public:
    explicit Peers(Simulation& simulation);

    /// Starts and ends daemons, each served by `server` while it runs, as the faults of the present ask for.
    core::Result<void> update(ipc::IServer& server);

private:
    struct Slot {
        std::unique_ptr<Peer> peer;
        bool is_running = false;
        bool is_served = false;
    };

    void log(std::span<const Event> events) const;
    static core::Result<void> update(Slot& slot, ipc::IServer& server);

    std::vector<Slot> slots_; ///< in the order of the peer table
};

} // namespace xpon::simulator
