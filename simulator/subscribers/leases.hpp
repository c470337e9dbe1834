#pragma once

#include "simulator/plant/lease_times.hpp"
#include "simulator/subscribers/subscribers.hpp"

#include <optional>

namespace xpon::simulator {

/// The leases that the relay agent saw being given.
class Leases {
public:
    explicit Leases(const AccessNetwork& network)
        : plant_(network.plant()), uplinks_(network.plant().uplink_history()) {}

    /// When the host was last given its present lease. Empty for one without, or with an address of its own.
    [[nodiscard]] std::optional<PlantTime> last_grant(const SubscriberLine& line, unsigned host);

private:
    const Plant& plant_;
    UplinkStretches uplinks_;
};

} // namespace xpon::simulator
