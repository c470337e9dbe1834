#include "simulator/subscribers/pppoe_sessions.hpp"

#include <algorithm>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;

/// Ten attempts are refused within a moment, then it has to wait, over and over.
constexpr PlantTime block_time = 300s;
/// How long the network may be away before the peers, whose echo requests find no answer, give a session up.
constexpr PlantTime echo_patience = 90s;

/// No two services have the same one, and a service keeps its own: the numbers of all services, mixed. 0 stands for
/// no session and 0xffff is reserved [RFC 2516].
std::uint16_t session_id_of(const Plant& plant, const SubscriberLine& line) {
    constexpr std::uint64_t ids = 0xfffe;
    constexpr std::uint64_t factor = 40503; // without a common divisor, so that it only mixes
    static_assert(ids > std::uint64_t{max_onts} * max_services);
    const auto offset = plant.random().number(Purpose::session_numbers, {}) % ids;
    const std::uint64_t number = std::uint64_t{line.index} * max_services + line.service->number - 1U;
    return static_cast<std::uint16_t>(1 + (number * factor + offset) % ids);
}

/// When the present session was opened, if the client tries from `begin` on and takes `delay` for it.
std::optional<PlantTime> opened(const std::vector<Stretch>& uplinks, PlantTime begin, PlantTime delay, PlantTime now) {
    std::optional<PlantTime> open;
    PlantTime given_up{};
    for (const auto& [up, down] : uplinks) {
        if (down <= begin || up > now) {
            continue;
        }
        if (!open || up >= given_up) {
            open = std::max(begin, up) + delay;
        }
        if (*open >= down) {
            open.reset();
        }
        given_up = down == never ? never : down + echo_patience;
    }
    return open && *open <= now && now < given_up ? open : std::nullopt;
}

} // namespace

std::optional<PppoeSession> PppoeSessions::find(const SubscriberLine& line) {
    if (!line.service->pppoe_agent || !line.served) {
        return std::nullopt;
    }
    const auto& plant = network_.plant();
    const auto now = plant.now();
    const auto delay = line.time_between(3s, 10s, plant.random(), Purpose::session_delay, 0);
    const auto* const block = network_.pppoe_blocks().find(line.ont->hardware->position, line.service->number);
    if (block != nullptr && block->until == never) {
        const auto blocked = std::max(block->since, line.served->since + delay);
        return blocked <= now ? std::optional(PppoeSession{0, {}, block_time - (now - blocked) % block_time})
                              : std::nullopt;
    }
    const auto begin = block == nullptr ? line.served->since : std::max(line.served->since, block->until);
    const auto open = opened(uplinks_.of(line.service->s_vid), begin, delay, now);
    return open ? std::optional(PppoeSession{session_id_of(plant, line), now - *open, {}}) : std::nullopt;
}

} // namespace xpon::simulator
