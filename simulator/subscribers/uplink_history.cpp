#include "simulator/subscribers/uplink_history.hpp"

#include "simulator/subscribers/uplinks.hpp"

#include <set>

namespace xpon::simulator {
namespace {

/// More changes than a tester makes in a run, few enough to keep (half a KiB each). The oldest are forgotten.
constexpr std::size_t most_periods = 1024;

VlanSet carried_at(const Plant& plant, PlantTime time) {
    VlanSet vlans;
    for (const auto& uplink : uplinks_at(plant, time)) {
        vlans |= uplink.vlans;
    }
    return vlans;
}

} // namespace

void UplinkHistory::follow(const Plant& plant) {
    const auto now = plant.now();
    // What was foreseen does not count any more.
    while (!periods_.empty() && periods_.back().since >= now) {
        periods_.pop_back();
    }
    std::set<PlantTime> times{now};
    for (unsigned port = 1; port <= front_ports; ++port) {
        if (const auto since = plant.front_link_since(port); since > now && since != never) {
            times.insert(since);
        }
    }
    for (const auto time : times) {
        const auto vlans = carried_at(plant, time);
        if (periods_.empty() || periods_.back().vlans != vlans) {
            periods_.push_back({time, vlans});
        }
    }
    if (periods_.size() > most_periods) {
        periods_.erase(periods_.begin(), periods_.end() - most_periods);
    }
}

std::vector<Stretch> UplinkHistory::stretches_of(std::uint16_t vid) const {
    std::vector<Stretch> stretches;
    bool is_up = false;
    for (const auto& [since, vlans] : periods_) {
        if (vlans[vid] && !is_up) {
            stretches.push_back({since, never});
        } else if (!vlans[vid] && is_up) {
            stretches.back().until = since;
        }
        is_up = vlans[vid];
    }
    return stretches;
}

const std::vector<Stretch>& UplinkStretches::of(std::uint16_t vid) {
    const auto known = known_.find(vid);
    return known != known_.end() ? known->second : known_.emplace(vid, history_.stretches_of(vid)).first->second;
}

} // namespace xpon::simulator
