#include "simulator/plant/multicast.hpp"

#include <algorithm>
#include <chrono>
#include <iterator>

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

/// Whether a group may be joined beside others.
bool has_room(const Random& random, const ViewingLimits& limits, const JoinedGroups& joined, std::uint8_t group) {
    const unsigned most =
        limits.most_groups == 0 ? most_joined_groups : std::min(limits.most_groups, most_joined_groups);
    return joined.count < most &&
           (limits.most_kbps == 0 || stream_kbps(random, joined) + stream_kbps(random, group) <= limits.most_kbps);
}

} // namespace

bool JoinedGroups::contains(std::uint8_t wanted) const {
    return std::ranges::binary_search(groups(), wanted);
}

void JoinedGroups::add(std::uint8_t joined) {
    group.at(count++) = joined;
    std::ranges::sort(std::span(group).first(count));
}

void JoinedGroups::remove(std::uint8_t left) {
    std::ranges::remove(std::span(group).first(count), left);
    group.at(--count) = 0;
}

ViewingLimits::ViewingLimits(const OntSettings& settings)
    : most_groups(settings.max_groups), most_kbps(settings.max_multicast_kbps) {
    for (unsigned group = 0; group < multicast_groups; ++group) {
        constexpr std::uint32_t before_first = 0xef000000; // 239.0.0.0
        const auto address = before_first + group + 1;
        const bool is_allowed = settings.groups.empty() || std::ranges::any_of(settings.groups, [&](const auto& range) {
                                    return range.first <= address && address <= range.last;
                                });
        if (is_allowed) {
            groups.push_back(static_cast<std::uint8_t>(group));
        }
    }
}

double stream_kbps(const Random& random, std::uint8_t group) {
    return random.between(4500, 7500, Purpose::stream_rate, {group});
}

double stream_kbps(const Random& random, const JoinedGroups& joined) {
    double sum = 0;
    for (const auto group : joined.groups()) {
        sum += stream_kbps(random, group);
    }
    return sum;
}

JoinedGroups admitted(const Random& random, const ViewingLimits& limits, const JoinedGroups& wanted) {
    JoinedGroups joined;
    for (const auto group : wanted.groups()) {
        if (std::ranges::binary_search(limits.groups, group) && has_room(random, limits, joined, group)) {
            joined.add(group);
        }
    }
    return joined;
}

Viewer::Viewer(const Random& random, const OntPosition& ont, unsigned service, const ViewingLimits& limits)
    : ont_(ont), service_(service) {
    constexpr std::chrono::duration<double, std::milli> least = 10min;
    constexpr std::chrono::duration<double, std::milli> most = 30min;
    const auto time_between = [&](double from, double to, std::uint64_t what) {
        return PlantTime(static_cast<PlantTime::rep>(
            random.between(from, to, Purpose::viewing_length, {ont.port, ont.ont, service, what})));
    };
    length_ = time_between(least.count(), most.count(), 0);
    under_way_ = time_between(0, static_cast<double>(length_.count()), 1);
    for (unsigned nth = 0; nth < cycle; ++nth) {
        auto& choice = choices_.at(nth);
        choice = choose(random, limits, nth);
        choice.kbit_before = kbit_in_cycle_;
        kbit_in_cycle_ += choice.kbps * seconds_of(length_);
        peak_kbps_ = std::max(peak_kbps_, choice.kbps);
    }
}

/// What is wanted, as far as the ONT allows it.
Viewer::Choice Viewer::choose(const Random& random, const ViewingLimits& limits, unsigned nth) const {
    const auto key = [&](Purpose purpose, std::uint64_t which) {
        return random.share(purpose, {ont_.port, ont_.ont, service_, nth, which});
    };
    const unsigned wanted = key(Purpose::viewing_pattern, 0) < 0.5 ? 1 : 2;
    auto left = limits.groups;
    Choice choice;
    while (choice.joined.count < wanted && !left.empty()) {
        const auto place =
            popular_one(key(Purpose::viewing_groups, choice.joined.count), static_cast<unsigned>(left.size()));
        const auto group = left.at(place);
        if (!has_room(random, limits, choice.joined, group)) {
            break;
        }
        choice.joined.add(group);
        left.erase(left.begin() + place);
    }
    choice.kbps = stream_kbps(random, choice.joined);
    return choice;
}

std::int64_t Viewer::viewing_at(PlantTime time) const {
    return floor_division((time + under_way_).count(), length_.count());
}

Viewing Viewer::at(PlantTime time) const {
    const auto nth = viewing_at(time);
    const auto& choice = choices_.at(static_cast<std::uint64_t>(nth) % cycle);
    return {.since = nth * length_ - under_way_, .until = (nth + 1) * length_ - under_way_, .joined = choice.joined};
}

double Viewer::kbit_until(PlantTime time) const {
    const auto nth = viewing_at(time);
    const auto& choice = choices_.at(static_cast<std::uint64_t>(nth) % cycle);
    const auto in_viewing = time + under_way_ - nth * length_;
    return static_cast<double>(floor_division(nth, cycle)) * kbit_in_cycle_ + choice.kbit_before +
           choice.kbps * seconds_of(in_viewing);
}

Viewing Membership::at(PlantTime time) const {
    const auto next = std::ranges::upper_bound(choices_, time, {}, &GroupChoice::at);
    const auto until = next == choices_.end() ? never : next->at;
    if (next == choices_.begin()) {
        auto viewing = viewer_.at(time);
        viewing.until = std::min(viewing.until, until);
        return viewing;
    }
    const auto& choice = *std::prev(next);
    if (choice.held) {
        return {.since = choice.at, .until = until, .joined = admitted(random_, limits_, *choice.held)};
    }
    auto viewing = viewer_.at(time);
    return {std::max(viewing.since, choice.at), std::min(viewing.until, until), viewing.joined};
}

} // namespace xpon::simulator
