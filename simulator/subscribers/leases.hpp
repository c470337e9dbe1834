#pragma once

#include "simulator/subscribers/subscribers.hpp"

#include <optional>

namespace xpon::simulator {

/// The leases that hosts get through the relay agent [RFC 2131]: when their ONT goes into service, renewed at half
/// their time as long as it is there and the network is reached. An attempt that fails is repeated every minute, and
/// so is the search for another lease once one has ended.
class Leases {
public:
    static constexpr PlantTime length = std::chrono::seconds(3600);

    explicit Leases(const AccessNetwork& network) : plant_(network.plant()), uplinks_(network.uplinks()) {}

    /// When the host was last given its present lease. Empty for one without, or with an address of its own.
    [[nodiscard]] std::optional<PlantTime> last_grant(const SubscriberLine& line, unsigned host);

private:
    /// The last one in a time in service whose first attempt is `delay` after its begin.
    [[nodiscard]] std::optional<PlantTime> last_grant_in(const Stretch& served, PlantTime delay, std::uint16_t vid);

    const Plant& plant_;
    UplinkStretches uplinks_;
};

} // namespace xpon::simulator
