#include "simulator/plant/subscriber_acts.hpp"

#include <algorithm> // NOLINT(misc-include-cleaner): std::ranges::upper_bound
#include <iterator>

namespace xpon::simulator {
namespace {

/// More than a tester does in the half hour that counters are asked for.
constexpr std::size_t most_acts = 256;

} // namespace

const ServiceActs& SubscriberActs::of(const OntPosition& ont, unsigned service) const {
    static const ServiceActs none;
    const auto found = acts_.find({ont, service});
    return found == acts_.end() ? none : found->second;
}

OntUsage SubscriberActs::usage_of(const OntPosition& ont) const {
    OntUsage usage;
    for (auto service = acts_.lower_bound({ont, 0}); service != acts_.end() && service->first.first == ont; ++service) {
        const auto& acts = service->second;
        const ServiceUsage use{acts.profile, acts.groups.empty() ? std::nullopt : acts.groups.back().held};
        if (use != ServiceUsage{}) {
            usage.emplace(service->first.second, use);
        }
    }
    return usage;
}

std::optional<PlantTime> SubscriberActs::end_of_oldest_half() const {
    for (const auto& [service, acts] : acts_) {
        if (acts.leases.size() > most_acts) {
            return acts.leases[acts.leases.size() / 2].at;
        }
        if (acts.groups.size() > most_acts) {
            return acts.groups[acts.groups.size() / 2].at;
        }
    }
    return std::nullopt;
}

void SubscriberActs::forget_before(PlantTime time) {
    for (auto& [service, acts] : acts_) {
        std::erase_if(acts.leases, [&](const LeaseAct& act) { return act.at < time; });
        // The last choice is still in force.
        const auto kept = std::ranges::upper_bound(acts.groups, time, {}, &GroupChoice::at);
        acts.groups.erase(acts.groups.begin(), kept == acts.groups.begin() ? kept : std::prev(kept));
    }
}

} // namespace xpon::simulator
