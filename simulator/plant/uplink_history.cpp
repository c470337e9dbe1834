#include "simulator/plant/uplink_history.hpp"

#include "simulator/plant/circumstances.hpp"
#include "simulator/plant/ports.hpp"
#include "simulator/plant/uplinks.hpp"

#include <algorithm> // NOLINT(misc-include-cleaner): std::ranges::upper_bound
#include <set>

namespace xpon::simulator {
namespace {

/// More changes than a tester makes in a run, few enough to keep (half a KiB each).
constexpr std::size_t most_periods = 1024;

VlanSet carried_at(const Circumstances& given, const Ports& ports, PlantTime time) {
    VlanSet vlans;
    for (const auto& uplink : uplinks_at(given, ports, time)) {
        vlans |= uplink.vlans;
    }
    return vlans;
}

} // namespace

void UplinkHistory::follow(const Circumstances& given, const Ports& ports) {
    const auto now = given.now;
    // What was foreseen does not count any more.
    while (!periods_.empty() && periods_.back().since >= now) {
        periods_.pop_back();
    }
    std::set<PlantTime> times{now};
    for (unsigned port = 1; port <= front_ports; ++port) {
        if (const auto since = ports.front_link_since(given, port); since > now && since != never) {
            times.insert(since);
        }
    }
    for (const auto time : times) {
        const auto vlans = carried_at(given, ports, time);
        if (periods_.empty() || periods_.back().vlans != vlans) {
            periods_.push_back({time, vlans});
        }
    }
}

std::optional<PlantTime> UplinkHistory::end_of_oldest_half() const {
    return periods_.size() <= most_periods ? std::nullopt : std::optional(periods_[periods_.size() / 2].since);
}

void UplinkHistory::forget_before(PlantTime time) {
    const auto kept = std::ranges::upper_bound(periods_, time, {}, &Period::since);
    if (kept != periods_.begin()) {
        periods_.erase(periods_.begin(), kept - 1);
    }
}

template <class IsUp>
std::vector<Stretch> UplinkHistory::stretches_in_which(IsUp is_up) const {
    std::vector<Stretch> stretches;
    bool was_up = false;
    for (const auto& [since, vlans] : periods_) {
        if (is_up(vlans) && !was_up) {
            stretches.push_back({since, never});
        } else if (!is_up(vlans) && was_up) {
            stretches.back().until = since;
        }
        was_up = is_up(vlans);
    }
    return stretches;
}

std::vector<Stretch> UplinkHistory::stretches_of(std::uint16_t vid) const {
    return stretches_in_which([&](const VlanSet& vlans) { return vlans[vid]; });
}

std::vector<Stretch> UplinkHistory::stretches() const {
    return stretches_in_which([](const VlanSet& vlans) { return vlans.any(); });
}

const std::vector<Stretch>& UplinkStretches::of(std::uint16_t vid) {
    const auto known = known_.find(vid);
    return known != known_.end() ? known->second : known_.emplace(vid, history_.stretches_of(vid)).first->second;
}

} // namespace xpon::simulator
