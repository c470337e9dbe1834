#pragma once

#include "simulator/files/event_log.hpp"
#include "simulator/peers/peer.hpp"

namespace xpon::simulator {

/// The system manager. It keeps the record of what was committed for all peers, each of which gets the notice.
class SystemManager : public Peer {
public:
    SystemManager(const PeerDescription& description, Simulation& simulation);

private:
    void committed(const ipc::ServerRequest& request, std::span<const service::Config_change> changes) override;

    EventLog events_;
};

} // namespace xpon::simulator
