#pragma once

#include "simulator/plant/service_hosts.hpp"
#include "simulator/plant/subscriber_acts.hpp"

#include <optional>
#include <vector>

namespace xpon::simulator {

/// The leases that one host gets through the relay agent [RFC 2131] in a time in service, or is to get if nothing
/// happens any more: the first attempt is made soon after its begin, each is repeated every minute until it succeeds,
/// which takes an uplink. The host renews its lease again and again after a time of its own, around half the lease; an
/// act has it ask at once.
class LeaseTimes {
public:
    static constexpr PlantTime length = std::chrono::seconds(3600);

    /// `uplinks`: when the service's VLAN led into the network; `acts`: of its hosts. Both ascending; must outlive this
    /// object.
    LeaseTimes(const ServiceHosts& hosts, unsigned host, PlantTime service_begins, const std::vector<Stretch>& uplinks,
               const std::vector<LeaseAct>& acts);

    /// The last one granted before `end`; empty without one.
    [[nodiscard]] std::optional<PlantTime> last_grant(PlantTime end) const;
    /// When the host has both a lease and an uplink, ascending.
    [[nodiscard]] std::vector<Stretch> usable() const;

private:
    /// Where a host stands with its lease.
    struct Progress {
        PlantTime due;                   ///< the next one
        std::optional<PlantTime> last{}; ///< granted
    };

    /// Calls `visit(uplink, progress)` for each uplink, or the part of it between two acts: when the next lease is due
    /// in it, if it lasts so long, and when the last one before it was granted. Returns how it stands at `end`.
    template <class Visit>
    Progress visit_uplinks(PlantTime end, Visit visit) const;
    template <class Visit>
    void visit_between(const Stretch& acts, Progress& progress, Visit visit) const;

    const std::vector<Stretch>& uplinks_;
    const std::vector<LeaseAct>& acts_;
    PlantTime service_begins_;
    PlantTime delay_; ///< of the first attempt
    PlantTime renewal_;
};

} // namespace xpon::simulator
