#pragma once

#include "simulator/peers/event_log.hpp"
#include "xpon/core/result.hpp"
#include "xpon/ipc/server.hpp"

#include <memory>
#include <vector>

namespace xpon::simulator {

/// All peer daemons of one OLT.
class Peers {
public:
    explicit Peers(const EventLog& events);

    /// Has `server`, which must not outlive this object, serve every address of the peer table.
    core::Result<void> bind_to(ipc::IServer& server);

private:
    std::vector<std::unique_ptr<ipc::IPeerHandler>> handlers_; ///< in the order of the peer table
};

} // namespace xpon::simulator
