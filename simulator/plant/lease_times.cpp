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
                       const std::vector<Stretch>& uplinks, const std::vector<LeaseAct>& acts)
    : uplinks_(uplinks), acts_(acts), service_begins_(service_begins),
      delay_(hosts.time_between(2s, 8s, Purpose::lease_delay, host)),
      renewal_(hosts.time_between(earliest_renewal, latest_renewal, Purpose::lease_renewal, host)) {}

template <class Visit>
LeaseTimes::Progress LeaseTimes::visit_uplinks(PlantTime end, Visit visit) const {
    Progress progress{service_begins_ + delay_};
    auto from = service_begins_;
    const auto first = std::ranges::upper_bound(acts_, service_begins_, {}, &LeaseAct::at);
    for (const auto& act : std::ranges::subrange(first, acts_.end())) {
        if (act.at >= end) {
            break;
        }
        visit_between({from, act.at}, progress, visit);
        from = act.at;
        progress = act.drops ? Progress{act.at + delay_} : Progress{act.at, progress.last};
    }
    visit_between({from, end}, progress, visit);
    return progress;
}

template <class Visit>
void LeaseTimes::visit_between(const Stretch& acts, Progress& progress, Visit visit) const {
    auto& [due, last] = progress;
    for (const auto& whole : uplinks_) {
        const Stretch uplink{std::max(whole.since, acts.since), std::min(whole.until, acts.until)};
        if (uplink.since >= uplink.until) {
            continue;
        }
        if (due < uplink.since) {
            due += (uplink.since - due + repetition - PlantTime(1)) / repetition * repetition;
        }
        visit(uplink, progress);
        if (uplink.until != never && due < uplink.until) {
            last = due + (uplink.until - PlantTime(1) - due) / renewal_ * renewal_;
            due = *last + renewal_;
        }
    }
}

std::optional<PlantTime> LeaseTimes::last_grant(PlantTime end) const {
    return visit_uplinks(end, [](const Stretch&, const Progress&) {}).last;
}

std::vector<Stretch> LeaseTimes::usable() const {
    std::vector<Stretch> stretches;
    const auto add = [&](PlantTime since, PlantTime until) {
        if (since < until) {
            stretches.push_back({since, until});
        }
    };
    visit_uplinks(never, [&](const Stretch& uplink, const Progress& progress) {
        const auto& [due, last] = progress;
        // What is left of the lease from before the uplink was away is as good as a new one.
        if (last) {
            add(uplink.since, std::min({*last + length, due, uplink.until}));
        }
        add(due, uplink.until);
    });
    return stretches;
}

} // namespace xpon::simulator
