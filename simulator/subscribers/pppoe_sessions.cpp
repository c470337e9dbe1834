#include "simulator/subscribers/pppoe_sessions.hpp"

#include "simulator/plant/serial_bytes.hpp"
#include "simulator/subscribers/subscribers.hpp"

#include <algorithm>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;

constexpr PlantTime block_time = 300s;
/// How long the network may be away before the peers, whose echo requests find no answer, give a session up.
constexpr PlantTime echo_patience = 90s;

std::uint32_t whole_seconds(PlantTime time) {
    return static_cast<std::uint32_t>(std::chrono::floor<std::chrono::seconds>(time).count());
}

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
std::optional<PlantTime> opened(const Plant& plant, const std::vector<Stretch>& uplinks, PlantTime begin,
                                PlantTime delay) {
    std::optional<PlantTime> open;
    PlantTime given_up{};
    for (const auto& [up, down] : uplinks) {
        if (down <= begin || up > plant.now()) {
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
    return open && *open <= plant.now() && plant.now() < given_up ? open : std::nullopt;
}

class Sessions {
public:
    explicit Sessions(const Plant& plant) : plant_(plant), uplinks_(plant.subscriber_history().uplinks) {}

    void add(const SubscriberLine& line) {
        if (!line.service->pppoe_agent || !line.served) {
            return;
        }
        const auto delay = line.time_between(3s, 10s, plant_.random(), Purpose::session_delay, 0);
        const auto* const block =
            plant_.subscriber_history().pppoe_blocks.find(line.ont->hardware->position, line.service->number);
        if (block != nullptr && block->until == never) {
            const auto blocked = std::max(block->since, line.served->since + delay);
            if (blocked <= plant_.now()) {
                add_blocked(line, plant_.now() - blocked);
            }
            return;
        }
        const auto begin = block == nullptr ? line.served->since : std::max(line.served->since, block->until);
        if (const auto open = opened(plant_, uplinks_.of(line.service->s_vid), begin, delay)) {
            auto& session = add_entry(line);
            session.session_id = session_id_of(plant_, line);
            session.duration_sec = whole_seconds(plant_.now() - *open);
        }
    }

    [[nodiscard]] std::vector<Pppoe_session> take() {
        return std::move(sessions_);
    }

private:
    Pppoe_session& add_entry(const SubscriberLine& line) {
        auto& session = sessions_.emplace_back();
        session.pon_port = static_cast<std::uint8_t>(line.place.port);
        session.ont_id = static_cast<std::uint16_t>(line.place.ont);
        session.gem_port = line.gem_port();
        put_serial(session.ont_serial, line.ont->hardware->serial);
        std::ranges::copy(line.mac_of(0), session.client_mac);
        return session;
    }

    /// Ten attempts are refused within a moment, then it has to wait, over and over.
    void add_blocked(const SubscriberLine& line, PlantTime blocked_for) {
        add_entry(line).unblock_rest_sec = whole_seconds(block_time) - whole_seconds(blocked_for % block_time);
    }

    const Plant& plant_;
    UplinkStretches uplinks_;
    std::vector<Pppoe_session> sessions_;
};

} // namespace

std::vector<Pppoe_session> report_pppoe_sessions(const Plant& plant) {
    Sessions sessions(plant);
    visit_lines(plant, [&](const SubscriberLine& line) { sessions.add(line); });
    return sessions.take();
}

} // namespace xpon::simulator
