#pragma once

#include "simulator/peers/event_log.hpp"
#include "simulator/peers/peer.hpp"

namespace xpon::simulator {

/// The system manager. It keeps the record of what was committed for all peers, each of which gets the notice.
class SystemManager : public Peer {
public:
    explicit SystemManager(EventLog events);

    void notice(const ipc::ServerRequest& request) override;

private:
    EventLog events_;
};

} // namespace xpon::simulator
