#include "simulator/subscribers/pppoe_sessions.hpp"

#include "simulator/plant/service_use.hpp"
#include "simulator/plant/session_times.hpp"

#include <algorithm>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;

/// Ten attempts are refused within a moment, then it has to wait, over and over.
constexpr PlantTime block_time = 300s;
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

} // namespace

std::optional<PppoeSession> PppoeSessions::find(const SubscriberLine& line) {
    if (!line.service->pppoe_agent || !line.served || line.hosts.count() == 0) {
        return std::nullopt;
    }
    const auto& plant = network_.plant();
    const auto now = plant.now();
    const auto delay = session_delay(line.hosts);
    const auto& blocks = plant.pppoe_blocks().of(line.ont->hardware->position, line.service->number);
    if (!blocks.empty() && blocks.back().until == never) {
        const auto blocked = std::max(blocks.back().since, line.served->since + delay);
        return blocked <= now ? std::optional(PppoeSession{0, {}, block_time - (now - blocked) % block_time})
                              : std::nullopt;
    }
    for (const auto& session : session_times(line.served->since, delay, uplinks_.of(line.service->s_vid), blocks)) {
        if (session.open.since <= now && now < session.open.until) {
            return PppoeSession{session_id_of(plant, line), now - session.open.since, {}};
        }
    }
    return std::nullopt;
}

} // namespace xpon::simulator
