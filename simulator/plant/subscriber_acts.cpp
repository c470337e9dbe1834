#include "simulator/plant/subscriber_acts.hpp"

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

std::optional<PlantTime> SubscriberActs::end_of_oldest_half() const {
    for (const auto& [service, acts] : acts_) {
        if (acts.leases.size() > most_acts) {
            return acts.leases[acts.leases.size() / 2].at;
        }
    }
    return std::nullopt;
}

void SubscriberActs::forget_before(PlantTime time) {
    for (auto& [service, acts] : acts_) {
        std::erase_if(acts.leases, [&](const LeaseAct& act) { return act.at < time; });
    }
}

} // namespace xpon::simulator
