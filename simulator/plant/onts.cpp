#include "simulator/plant/onts.hpp"

#include "simulator/plant/circumstances.hpp"

#include <algorithm>
#include <array>

namespace xpon::simulator {

Onts::Onts(const PlantParameters& parameters) {
    onts_.reserve(parameters.size.onts);
    for (unsigned nth = 0; nth < parameters.size.onts; ++nth) {
        onts_.emplace_back(make_ont(parameters, nth));
    }
}

std::vector<OntPoint> Onts::points(const Circumstances& given) const {
    std::vector<OntPoint> points;
    points.reserve(onts_.size());
    for (const auto& ont : onts_) {
        points.push_back(ont.next_point(given));
    }
    return points;
}

void Onts::follow(const Circumstances& given, const Ports& ports, const std::vector<OntPoint>& points,
                  const RunningConfiguration& before) {
    std::vector<bool> starts(onts_.size());
    by_configuration_.clear();
    for (std::size_t nth = 0; nth < onts_.size(); ++nth) {
        starts[nth] = onts_[nth].follow(given, ports, points[nth], before);
        if (const auto& configured = onts_[nth].situation().configured) {
            by_configuration_.emplace(*configured, nth);
        }
    }
    share_discovery(given.random, starts);
}

std::vector<std::uint16_t> Onts::command(const Circumstances& given, OntCommand command,
                                         const std::function<bool(std::uint16_t index)>& is_meant) {
    std::vector<std::uint16_t> commanded;
    std::vector<bool> starts(onts_.size());
    for (std::size_t nth = 0; nth < onts_.size(); ++nth) {
        auto& ont = onts_[nth];
        const auto& place = ont.situation().configured;
        if (place && is_listed(ont.point(given).state) && is_meant(*place)) {
            starts[nth] = ont.carry_out(given, command);
            commanded.push_back(*place);
        }
    }
    share_discovery(given.random, starts);
    std::ranges::sort(commanded);
    return commanded;
}

/// ONTs that start together on one port answer in the same discovery windows, and some lose theirs.
void Onts::share_discovery(const Random& random, const std::vector<bool>& starts) {
    std::array<std::vector<TrackedOnt*>, pon_ports> starters;
    for (std::size_t nth = 0; nth < onts_.size(); ++nth) {
        if (starts[nth]) {
            starters.at(onts_[nth].situation().seen_port - 1U).push_back(&onts_[nth]);
        }
    }
    constexpr double loses_window = 0.25;
    for (const auto& rivals : starters) {
        for (auto* const ont : rivals) {
            const auto& at = ont->position();
            const auto waits = std::ranges::count_if(rivals, [&](const TrackedOnt* rival) {
                const auto& other = rival->position();
                return rival != ont && random.share(Purpose::discovery_collision,
                                                    {at.port, at.ont, other.port, other.ont}) < loses_window;
            });
            ont->wait_in_discovery(static_cast<std::uint16_t>(waits));
        }
    }
}

void Onts::forget_last_services() {
    std::ranges::for_each(onts_, &TrackedOnt::forget_last_service);
}

std::vector<OntNow> Onts::all(const Circumstances& given) const {
    std::vector<OntNow> onts;
    onts.reserve(onts_.size());
    for (const auto& ont : onts_) {
        onts.push_back(ont.describe(given));
    }
    return onts;
}

std::optional<OntNow> Onts::configured_as(const Circumstances& given, std::uint16_t index) const {
    const auto found = by_configuration_.find(index);
    return found == by_configuration_.end() ? std::nullopt : std::optional(onts_[found->second].describe(given));
}

} // namespace xpon::simulator
