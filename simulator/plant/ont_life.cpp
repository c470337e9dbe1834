#include "simulator/plant/ont_life.hpp"

#include <algorithm>
#include <array>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;

// The way into service [G.984.3 clause 10, G.988 for the steps over OMCI]:
//
//   gone -> INITIAL -> STANDBY -> SERIAL_NUMBER -> RANGING -> AUTHENTICATION -> MIB_UPLOAD -> CONFIGURING ->
//   OPERATIONAL
//              ^          ^            |              |             |               |  ^
//              |          +------------|--------------+             v               v  |  every 60 s
//            POPUP                     v         out of reach  AUTH_FAILED     CONFIG_FAILED
//                                  DISABLED
//
// What leads elsewhere (power, light, configuration, faults) is in react().

struct Place {
    const OntPoint& point;
    const OntSituation& situation;
    const OntPace& pace;
};

PlantTime random_time(const Place& at, PlantTime least, PlantTime most) {
    return at.pace.between(least, most, Purpose::state_duration, at.point.state);
}

PlantTime initial_time(const Place& at) {
    return at.point.from_power_on ? at.pace.between(30s, 60s, Purpose::power_on_time, ont_initial)
                                  : random_time(at, 1s, 3s);
}

/// To the window in which the OLT hears the serial number.
PlantTime discovery_time(const Place& at) {
    const auto interval = at.situation.discovery_interval;
    const auto running = std::max(at.point.since - at.situation.channel_since, PlantTime{});
    return interval - running % interval + at.situation.discovery_waits * interval;
}

bool may_range(const OntSituation& situation) {
    return situation.configured && (situation.has_onu_id || !situation.is_enabled);
}

bool has_omci_channel(const OntSituation& situation) {
    return situation.omci_works && !situation.omci_is_lost;
}

struct Row {
    Ont_state state;
    PlantTime (*lasts)(const Place&); ///< null: until something happens
    Ont_state (*next)(const OntSituation&);
};

/// The states that end by themselves.
constexpr std::array life{
    Row{ont_initial, initial_time, [](const auto&) { return ont_standby; }},
    Row{ont_standby, [](const auto&) -> PlantTime { return 500ms; },
        // An ONT that is known to talk out of turn is stopped before it talks again.
        [](const auto& situation) { return situation.is_stopped_rogue ? ont_emergency_stop : ont_serial_number; }},
    Row{ont_serial_number, discovery_time,
        [](const auto& situation) {
            return !may_range(situation) ? ont_serial_number : situation.is_enabled ? ont_ranging : ont_disabled;
        }},
    Row{ont_ranging,
        [](const auto& at) -> PlantTime { return at.situation.is_in_reach ? random_time(at, 1s, 2s) : 10s; },
        [](const auto& situation) { return situation.is_in_reach ? ont_authentication : ont_standby; }},
    Row{ont_authentication, [](const auto&) -> PlantTime { return 500ms; },
        [](const auto& situation) {
            return !situation.is_authentic ? ont_auth_failed : situation.key_works ? ont_mib_upload : ont_standby;
        }},
    Row{ont_mib_upload, [](const auto& at) { return random_time(at, 3s, 6s); },
        [](const auto& situation) { return has_omci_channel(situation) ? ont_configuring : ont_config_failed; }},
    Row{ont_configuring, [](const auto& at) -> PlantTime { return 1s + at.situation.services * 500ms; },
        [](const auto& situation) { return has_omci_channel(situation) ? ont_operational : ont_config_failed; }},
    Row{ont_config_failed, [](const auto&) -> PlantTime { return 60s; }, [](const auto&) { return ont_mib_upload; }},
    Row{ont_popup, [](const auto&) -> PlantTime { return 100ms; },
        [](const auto& situation) { return situation.is_cut ? ont_gone : ont_initial; }},
};

const Row* find_row(Ont_state state) {
    const auto* const row = std::ranges::find(life, state, &Row::state);
    return row == life.end() ? nullptr : row;
}

/// Ways that come back to where they were: skipped in whole rounds, so that a walk of days costs no more than one of
/// minutes.
class Rounds {
public:
    /// `point` moves on by the rounds that end before `now`.
    void skip(OntPoint& point, PlantTime now) {
        auto& last = last_at_.at(point.state);
        if (last && point.since > *last) {
            const auto round = point.since - *last;
            point.since += (now - point.since) / round * round;
        }
        last = point.since;
    }

private:
    std::array<std::optional<PlantTime>, ont_disabled + 1> last_at_;
};

bool is_on_pon(const OntSituation& situation) {
    return situation.has_power && situation.channel_is_up;
}

OntPoint start(PlantTime when, const OntSituation& situation, bool from_power_on) {
    return {ont_initial, std::max(when, situation.channel_since), from_power_on};
}

/// Whether the OLT has its OMCI channel in use.
bool has_omci(Ont_state state) {
    return state >= ont_mib_upload && state <= ont_operational;
}

/// The change of what only matters to ONTs that the OLT has heard.
OntPoint react_to_configuration(const OntPoint& at, const OntSituation& before, const OntSituation& after,
                                PlantTime now) {
    const bool was_heard = at.state == ont_serial_number || is_listed(at.state);
    if (!was_heard) {
        return at;
    }
    if (!may_range(after)) {
        return is_listed(at.state) ? OntPoint{ont_serial_number, now} : at;
    }
    if (!after.is_enabled) {
        return at.state == ont_disabled ? at : OntPoint{ont_disabled, now};
    }
    if (!may_range(before) || !before.is_enabled || before.configured != after.configured) {
        return {ont_ranging, now};
    }
    if (before.credentials != after.credentials || (at.state == ont_auth_failed && after.is_authentic)) {
        return at.state >= ont_authentication ? OntPoint{ont_authentication, now} : at;
    }
    if (before.key_works && !after.key_works && at.state >= ont_mib_upload && at.state <= ont_config_failed) {
        return {ont_standby, now};
    }
    if (before.omci_works && !after.omci_works && has_omci(at.state)) {
        return {ont_config_failed, now};
    }
    const bool is_provided =
        at.state == ont_configuring || at.state == ont_operational || at.state == ont_config_failed;
    if ((before.provision != after.provision || before.services != after.services) && is_provided) {
        return {ont_configuring, now};
    }
    return at;
}

} // namespace

PlantTime OntPace::between(PlantTime least, PlantTime most, Purpose purpose, Ont_state state) const {
    const auto span = static_cast<double>((most - least).count());
    return least + PlantTime(static_cast<PlantTime::rep>(span * random_.share(purpose, {port_, ont_, state})));
}

OntPoint walk(OntPoint from, const OntSituation& situation, const OntPace& pace, PlantTime now) {
    if (now < from.since) {
        return {};
    }
    Rounds rounds;
    for (auto point = from;;) {
        const auto* const row = find_row(point.state);
        if (row == nullptr) {
            return point;
        }
        const auto end = point.since + row->lasts({point, situation, pace});
        const auto next = row->next(situation);
        if (end > now || next == point.state) {
            return point;
        }
        point = {next, end};
        rounds.skip(point, now);
    }
}

std::optional<OntPoint> end_of_walk(const OntPoint& from, const OntSituation& situation, const OntPace& pace) {
    auto point = from;
    for (std::size_t steps = 0; steps <= life.size(); ++steps) {
        const auto end = end_of(point, situation, pace);
        if (end == never) {
            return point;
        }
        point = {find_row(point.state)->next(situation), end};
    }
    return std::nullopt; // round and round
}

PlantTime end_of(const OntPoint& point, const OntSituation& situation, const OntPace& pace) {
    const auto* const row = find_row(point.state);
    const bool ends = row != nullptr && row->next(situation) != point.state;
    return ends ? point.since + row->lasts({point, situation, pace}) : never;
}

OntPoint react(const OntPoint& at, const OntSituation& before, const OntSituation& after, PlantTime now) {
    if (!is_on_pon(after)) {
        return {ont_gone, now};
    }
    if (after.is_cut) {
        return before.is_cut ? at : is_listed(at.state) ? OntPoint{ont_popup, now} : OntPoint{ont_gone, now};
    }
    if (!before.has_power) {
        return start(now, after, true);
    }
    if (!is_on_pon(before) || before.is_cut || before.channel_since != after.channel_since ||
        before.seen_port != after.seen_port) {
        return start(now, after, false);
    }
    if (after.is_stopped_rogue) {
        return at.state == ont_emergency_stop || at.state == ont_gone ? at : OntPoint{ont_emergency_stop, now};
    }
    if (before.is_stopped_rogue) {
        return start(now, after, false);
    }
    return react_to_configuration(at, before, after, now);
}

OntPoint obey(const OntPoint& at, const OntSituation& situation, OntCommand command, PlantTime now) {
    if (situation.is_cut) {
        return at; // on its way out, it hears nothing
    }
    if (command != OntCommand::reconfigure) {
        return start(now, situation, true);
    }
    if (at.state == ont_auth_failed) {
        return {ont_authentication, now};
    }
    return has_omci(at.state) || at.state == ont_config_failed ? OntPoint{ont_mib_upload, now} : at;
}

} // namespace xpon::simulator
