#include "simulator/plant/lease_times.hpp"

#include <algorithm>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;

constexpr PlantTime repetition = 1min;
// Half the lease, less by what the host's own fuzz takes off [RFC 2131 4.4.5].
constexpr PlantTime latest_renewal = LeaseTimes::length / 2;
constexpr PlantTime earliest_renewal = latest_renewal * 8 / 10;

} // namespace

LeaseTimes::LeaseTimes(const ServiceHosts& hosts, unsigned host, PlantTime service_begins,
                       const std::vector<Stretch>& uplinks)
    : uplinks_(uplinks), first_attempt_(service_begins + hosts.time_between(2s, 8s, Purpose::lease_delay, host)),
      renewal_(hosts.time_between(earliest_renewal, latest_renewal, Purpose::lease_renewal, host)) {}

template <class Visit>
std::optional<PlantTime> LeaseTimes::visit_uplinks(PlantTime end, Visit visit) const {
    std::optional<PlantTime> last;
    auto due = first_attempt_;
    for (const auto& uplink : uplinks_) {
        if (due < uplink.since) {
            due += (uplink.since - due + repetition - PlantTime(1)) / repetition * repetition;
        }
        visit(uplink, due, last);
        const auto limit = std::min(uplink.until, end);
        if (limit == never) {
            return last;
        }
        if (due < limit) {
            last = due + (limit - PlantTime(1) - due) / renewal_ * renewal_;
            due = *last + renewal_;
        }
    }
    return last;
}

std::optional<PlantTime> LeaseTimes::last_grant(PlantTime end) const {
    return visit_uplinks(end, [](const Stretch&, PlantTime, const std::optional<PlantTime>&) {});
}

std::vector<Stretch> LeaseTimes::usable() const {
    std::vector<Stretch> stretches;
    const auto add = [&](PlantTime since, PlantTime until) {
        if (since < until) {
            stretches.push_back({since, until});
        }
    };
    visit_uplinks(never, [&](const Stretch& uplink, PlantTime due, const std::optional<PlantTime>& last) {
        // What is left of the lease from before the uplink was away is as good as a new one.
        if (last) {
            add(uplink.since, std::min({*last + length, due, uplink.until}));
        }
        add(due, uplink.until);
    });
    return stretches;
}

} // namespace xpon::simulator
