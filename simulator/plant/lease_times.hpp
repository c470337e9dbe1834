#pragma once

#include "simulator/plant/service_hosts.hpp"

#include <optional>
#include <vector>

namespace xpon::simulator {

/// The leases that one host gets through the relay agent [RFC 2131] in a time in service, or is to get if nothing
/// happens any more: the first attempt is made soon after its begin, each is repeated every minute until it succeeds,
/// which takes an uplink. The host renews its lease again and again after a time of its own, around half the lease.
class LeaseTimes {
public:
    static constexpr PlantTime length = std::chrono::seconds(3600);

    /// `uplinks`: when the service's VLAN led into the network, ascending; must outlive this object.
    LeaseTimes(const ServiceHosts& hosts, unsigned host, PlantTime service_begins, const std::vector<Stretch>& uplinks);

    /// The last one granted before `end`; empty without one.
    [[nodiscard]] std::optional<PlantTime> last_grant(PlantTime end) const;
    /// When the host has both a lease and an uplink, ascending.
    [[nodiscard]] std::vector<Stretch> usable() const;

private:
    /// Calls `visit(uplink, due, last)` for each uplink: when the next lease is due in it, if it lasts so long, and
    /// when the last one before it was granted, if there was one. Returns the last one granted before `end`.
    template <class Visit>
    std::optional<PlantTime> visit_uplinks(PlantTime end, Visit visit) const;

    const std::vector<Stretch>& uplinks_;
    PlantTime first_attempt_;
    PlantTime renewal_;
};

} // namespace xpon::simulator
