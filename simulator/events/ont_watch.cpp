#include "simulator/events/ont_watch.hpp"

#include "simulator/events/ont_alarms.hpp"
#include "xpon/custom_layer/onts.h"
#include "xpon/peer_side/operations.hpp"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

constexpr auto daemon = peer_side::peers::pon_state_machine;

std::string text_of(const Plant::Ont& ont) {
    const auto serial = serial_text(ont.hardware->serial);
    const auto home = ont.hardware->position.port;
    const auto seen = ont.situation->seen_port;
    return fmt::format("{} {}{}", ont.point.state == ont_gone ? "GONE" : ont_state_to_str(ont.point.state), serial,
                       seen == home ? "" : fmt::format(" on PON port {}", seen));
}

} // namespace

void OntWatch::restart(const Plant& plant) {
    due_.clear();
    known_.assign(plant.ont_count(), {});
    for (std::size_t place = 0; place < known_.size(); ++place) {
        take(plant, plant.ont_at(place), place);
    }
}

void OntWatch::look(const Plant& plant, const std::vector<std::size_t>& touched, std::vector<Event>& events) {
    known_.resize(plant.ont_count());
    for (const auto place : touched) {
        look_at(plant, place, events);
    }
    while (next_due() <= plant.now()) {
        look_at(plant, due_.begin()->second, events);
    }
}

void OntWatch::look_at(const Plant& plant, std::size_t place, std::vector<Event>& events) {
    const auto ont = plant.ont_at(place);
    const auto before = known_[place];
    take(plant, ont, place);
    const auto target = to_text(ont_target(ont.hardware->position));
    if (ont.point.state != before.point.state || ont.point.since != before.point.since) {
        const bool is_gone = ont.point.state == ont_gone && before.point.state == ont_gone;
        const bool is_same = ont.point.state == before.point.state && ont.point.since <= before.point.since;
        if (!is_gone && !is_same) {
            const auto at = ont.point.state == ont_gone ? plant.now() : std::min(ont.point.since, plant.now());
            events.push_back({at, EventKind::ont, target, text_of(ont), daemon});
        }
    }
    const auto changed = known_[place].alarms ^ before.alarms;
    for (std::size_t nth = 0; changed >> nth != 0; ++nth) {
        if ((changed >> nth & 1U) != 0) {
            const auto& alarm = ont_alarms()[nth];
            const bool is_raised = (known_[place].alarms >> nth & 1U) != 0;
            events.push_back({plant.now(), EventKind::alarm, target,
                              fmt::format("{} {}", alarm.name, is_raised ? "raised" : "cleared"), daemon});
        }
    }
}

void OntWatch::take(const Plant& plant, const Plant::Ont& ont, std::size_t place) {
    auto& known = known_[place];
    due_.erase({known.due, place});
    known = {.point = ont.point, .due = plant.ont_changes_at(place), .alarms = alarms_of(plant, ont)};
    if (known.due != never) {
        due_.emplace(known.due, place);
    }
}

} // namespace xpon::simulator
