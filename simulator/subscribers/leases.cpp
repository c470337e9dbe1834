#include "simulator/subscribers/leases.hpp"

#include <algorithm>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;

constexpr PlantTime renewal_time = Leases::length / 2;
constexpr PlantTime repetition = 1min;
// What is due lies on the grid of the repetitions.
static_assert(renewal_time % repetition == PlantTime{});

} // namespace

std::optional<PlantTime> Leases::last_grant(const SubscriberLine& line, unsigned host) {
    const auto& service = *line.service;
    const bool is_static = service.static_ip != 0 && host == 0;
    if (!service.dhcp_agent || is_static) {
        return std::nullopt;
    }
    const auto delay = line.time_between(2s, 8s, plant_.random(), Purpose::lease_delay, host);
    std::optional<PlantTime> last;
    for (const auto& served : {line.served, line.served_before}) {
        if (!last && served) {
            last = last_grant_in(*served, delay, service.s_vid);
        }
    }
    return last && *last + length > plant_.now() ? last : std::nullopt;
}

std::optional<PlantTime> Leases::last_grant_in(const Stretch& served, PlantTime delay, std::uint16_t vid) {
    const auto first_attempt = served.since + delay;
    const auto end = std::min(served.until, plant_.now() + PlantTime(1));
    std::optional<PlantTime> last;
    auto due = first_attempt;
    for (const auto& [up, down] : uplinks_.of(vid)) {
        if (due < up) {
            due = first_attempt + (up - first_attempt + repetition - PlantTime(1)) / repetition * repetition;
        }
        const auto limit = std::min(down, end);
        if (due < limit) {
            last = due + (limit - PlantTime(1) - due) / renewal_time * renewal_time;
            due = *last + renewal_time;
        }
    }
    return last;
}

} // namespace xpon::simulator
