#include "simulator/plant/multicast.hpp"

#include <algorithm>
#include <chrono>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;

std::int64_t floor_division(std::int64_t dividend, std::int64_t divisor) {
    return dividend / divisor - (dividend % divisor < 0 ? 1 : 0);
}

/// Of `count` groups one, those of low numbers more often.
std::uint8_t popular_one(double share, unsigned count) {
    return static_cast<std::uint8_t>(share * share * count);
}

} // namespace

Viewer::Viewer(const Random& random, const OntPosition& ont, unsigned service, unsigned max_groups)
    : random_(random), ont_(ont), service_(service), max_groups_(max_groups),
      pattern_(random.number(Purpose::viewing_pattern, {ont.port, ont.ont, service})) {
    constexpr std::chrono::duration<double, std::milli> least = 10min;
    constexpr std::chrono::duration<double, std::milli> most = 30min;
    const auto choose = [&](double from, double to, std::uint64_t what) {
        return PlantTime(static_cast<PlantTime::rep>(
            random.between(from, to, Purpose::viewing_length, {ont.port, ont.ont, service, what})));
    };
    length_ = choose(least.count(), most.count(), 0);
    under_way_ = choose(0, static_cast<double>(length_.count()), 1);
    for (unsigned viewing = 0; viewing < cycle; ++viewing) {
        groups_in_cycle_ += count_in(viewing);
    }
    watched_at_start_ = watched_since_first(PlantTime{});
}

unsigned Viewer::count_in(std::int64_t viewing) const {
    const auto nth = static_cast<std::uint64_t>(viewing) % cycle;
    const unsigned wanted = 1 + static_cast<unsigned>(pattern_ >> nth & 1U);
    return max_groups_ == 0 ? wanted : std::min(wanted, max_groups_);
}

std::int64_t Viewer::viewing_at(PlantTime time) const {
    return floor_division((time + under_way_).count(), length_.count());
}

Viewing Viewer::at(PlantTime time) const {
    const auto nth = viewing_at(time);
    Viewing viewing{.since = nth * length_ - under_way_,
                    .until = (nth + 1) * length_ - under_way_,
                    .count = static_cast<std::uint8_t>(count_in(nth))};
    const auto share = [&](std::uint64_t which) {
        return random_.share(Purpose::viewing_groups,
                             {ont_.port, ont_.ont, service_, static_cast<std::uint64_t>(nth), which});
    };
    auto& [first, second] = viewing.group;
    first = popular_one(share(0), multicast_groups);
    if (viewing.count == 2) {
        // One of the others.
        second = popular_one(share(1), multicast_groups - 1);
        second = static_cast<std::uint8_t>(second + (second >= first ? 1 : 0));
        std::ranges::sort(viewing.group);
    }
    return viewing;
}

PlantTime Viewer::watched_since_first(PlantTime until) const {
    const auto nth = viewing_at(until);
    const auto cycles = floor_division(nth, cycle);
    std::int64_t whole = cycles * groups_in_cycle_;
    for (auto viewing = cycles * cycle; viewing < nth; ++viewing) {
        whole += count_in(viewing);
    }
    return whole * length_ + (until + under_way_ - nth * length_) * count_in(nth);
}

PlantTime Viewer::watched(PlantTime until) const {
    return watched_since_first(until) - watched_at_start_;
}

} // namespace xpon::simulator
