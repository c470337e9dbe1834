#include "simulator/plant/onts.hpp"

#include "simulator/plant/circumstances.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>
#include <ranges>
#include <set>
#include <utility>

namespace xpon::simulator {

Onts::Onts(const PlantParameters& parameters) {
    onts_.reserve(parameters.size.onts);
    for (unsigned nth = 0; nth < parameters.size.onts; ++nth) {
        const auto hardware = make_ont(parameters, nth);
        onts_.emplace_back(hardware);
        by_serial_.emplace(hardware.serial, nth);
    }
}

bool Onts::contains(const OntPosition& position) const {
    return std::ranges::find(onts_, position, &TrackedOnt::position) != onts_.end();
}

void Onts::put(const PhysicalOnt& ont) {
    const auto found = std::ranges::find(onts_, ont.position, &TrackedOnt::position);
    put(ont, static_cast<std::size_t>(found - onts_.begin()));
}

void Onts::put(const PhysicalOnt& ont, std::size_t place) {
    if (place == onts_.size()) {
        onts_.emplace_back(ont);
    } else {
        if (const auto& configured = onts_[place].situation().configured) {
            by_configuration_.take(*configured);
        }
        const bool is_known = onts_[place].hardware().serial == ont.serial;
        onts_[place] = TrackedOnt(ont);
        if (is_known) {
            return;
        }
        std::erase_if(by_serial_, [&](const auto& known) { return known.second == place; });
    }
    by_serial_.emplace(ont.serial, place);
}

void Onts::spread_over(PlantTime past, const Random& random) {
    using namespace std::chrono_literals;
    constexpr PlantTime youngest = 6min; // in service by the simulation's begin
    if (past <= youngest) {
        return;
    }
    constexpr double since_start_share = 0.08;
    const auto span = static_cast<double>((past - youngest).count());
    for (auto& ont : onts_) {
        const auto& at = ont.position();
        if (random.share(Purpose::ont_past, {at.port, at.ont, 0}) >= since_start_share) {
            // The older, the fewer there are.
            const double part = std::pow(random.share(Purpose::ont_past, {at.port, at.ont, 1}), 1.7);
            ont.begin_later(past - youngest - PlantTime(static_cast<PlantTime::rep>(span * part)), random);
        }
    }
}

void Onts::follow(const Circumstances& given, const Ports& ports, const ReplacedSettings& replaced) {
    Places all(onts_.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    have_follow(all, given, ports, replaced);
    // Only what is not configured moves an ONT to another port.
    std::ranges::for_each(seen_on_, &Places::clear);
    for (const auto place : all) {
        seen_on_.at(onts_[place].situation().seen_port - 1U).push_back(place);
    }
}

void Onts::follow_configuration(const Circumstances& given, const Ports& ports, const ReplacedSettings& replaced,
                                const ChangedOnts& onts) {
    have_follow(reached_by(given, replaced, onts), given, ports, replaced);
}

Onts::Places Onts::reached_by(const Circumstances& given, const ReplacedSettings& replaced,
                              const ChangedOnts& changed) const {
    std::set<std::size_t> reached;
    const auto add = [&](const OntTable<OntSettings>& settings, std::uint16_t index) {
        if (const auto* const found = settings.find(index)) {
            const auto [first, last] = by_serial_.equal_range(found->serial);
            std::ranges::copy(std::ranges::subrange(first, last) | std::views::values,
                              std::inserter(reached, reached.end()));
        }
    };
    const auto& settings = given.configuration.onts;
    for (const auto index : changed) {
        add(replaced.onts, index);
        add(settings, index);
        if (replaced.onts.contains(index) != settings.contains(index)) {
            for (const auto sharer : sharers_of_onu_ids(index)) {
                add(settings, sharer);
            }
        }
    }
    for (std::size_t port = 0; port < pon_ports; ++port) {
        if (replaced.pon.at(port) != given.configuration.pon.at(port)) {
            reached.insert(seen_on_.at(port).begin(), seen_on_.at(port).end());
        }
    }
    return {reached.begin(), reached.end()};
}

void Onts::have_follow(const Places& places, const Circumstances& given, const Ports& ports,
                       const ReplacedSettings& replaced) {
    for (const auto place : places) {
        if (const auto& configured = onts_[place].situation().configured) {
            by_configuration_.take(*configured);
        }
    }
    Places starters;
    for (const auto place : places) {
        touch(place);
        if (onts_[place].follow(given, ports, replaced)) {
            starters.push_back(place);
        }
    }
    for (const auto place : places) {
        if (const auto& configured = onts_[place].situation().configured;
            configured && !by_configuration_.contains(*configured)) {
            by_configuration_[*configured] = place;
        }
    }
    share_discovery(given.random, starters);
}

std::vector<std::uint16_t> Onts::command(const Circumstances& given, OntCommand command,
                                         const std::function<bool(std::uint16_t index)>& is_meant) {
    std::vector<std::uint16_t> commanded;
    Places starters;
    for (std::size_t place = 0; place < onts_.size(); ++place) {
        auto& ont = onts_[place];
        const auto& configured = ont.situation().configured;
        if (configured && is_listed(ont.point(given).state) && is_meant(*configured)) {
            touch(place);
            if (ont.carry_out(given, command)) {
                starters.push_back(place);
            }
            commanded.push_back(*configured);
        }
    }
    share_discovery(given.random, starters);
    std::ranges::sort(commanded);
    return commanded;
}

/// ONTs that start together on one port answer in the same discovery windows, and some lose theirs.
void Onts::share_discovery(const Random& random, const Places& starters) {
    std::array<std::vector<TrackedOnt*>, pon_ports> by_port;
    for (const auto place : starters) {
        by_port.at(onts_[place].situation().seen_port - 1U).push_back(&onts_[place]);
    }
    constexpr double loses_window = 0.25;
    for (const auto& rivals : by_port) {
        for (auto* const ont : rivals) {
            const auto& at = ont->position();
            const auto waits = std::ranges::count_if(rivals, [&](const TrackedOnt* rival) {
                const auto& other = rival->position();
                return rival != ont && random.share(Purpose::discovery_collision,
                                                    {at.port, at.ont, other.port, other.ont}) < loses_window;
            });
            ont->wait_in_discovery(static_cast<std::uint16_t>(waits), random);
        }
    }
}

void Onts::touch(std::size_t place) {
    is_touched_.resize(onts_.size());
    if (!is_touched_[place]) {
        is_touched_[place] = true;
        touched_.push_back(place);
    }
}

std::vector<std::size_t> Onts::take_touched() {
    is_touched_.clear();
    return std::exchange(touched_, {});
}

void Onts::count_until(const Circumstances& given, PlantTime time) {
    for (auto& ont : onts_) {
        ont.count_until(given, time);
    }
}

void Onts::forget_last_services() {
    std::ranges::for_each(onts_, &TrackedOnt::forget_last_service);
}

std::optional<OntNow> Onts::configured_as(const Circumstances& given, std::uint16_t index) const {
    const auto* const place = by_configuration_.find(index);
    return place == nullptr ? std::nullopt : std::optional(onts_[*place].describe(given));
}

} // namespace xpon::simulator
