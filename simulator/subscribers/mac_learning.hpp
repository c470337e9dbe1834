#pragma once

#include "simulator/subscribers/leases.hpp"
#include "simulator/subscribers/pppoe_sessions.hpp"

namespace xpon::simulator {

/// Which hosts the switch knows: those that it heard of late [802.1Q 8.8].
class MacLearning {
public:
    explicit MacLearning(const AccessNetwork& network)
        : plant_(network.plant()), leases_(network), sessions_(network) {}

    [[nodiscard]] bool is_known(const SubscriberLine& line, unsigned host);

private:
    /// What the source guard of its service has it do.
    [[nodiscard]] bool may_talk(const SubscriberLine& line, unsigned host);

    const Plant& plant_;
    Leases leases_;
    PppoeSessions sessions_;
};

} // namespace xpon::simulator
