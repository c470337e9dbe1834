#include "simulator/control/subscriber_commands.hpp"

#include "simulator/subscribers/leases.hpp"
#include "simulator/subscribers/pppoe_sessions.hpp"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

/// A service that a command is about.
struct ServicePlace {
    OntPosition ont;
    unsigned service;
    std::string text; ///< "3/17/1"
};

ServicePlace service_of(const Simulation& simulation, const CommandFields& fields) {
    const auto text = fields.text("service");
    std::string complaint;
    const auto target = parse_target(rule_of(FaultKind::pppoe_blocked), text, complaint);
    if (!target) {
        throw CommandError(fmt::format("'{}' is no service; they are PORT/ONT/SERVICE, such as 3/17/1", text));
    }
    const OntPosition ont{.port = target->port, .ont = target->ont};
    if (!simulation.plant().has_ont(ont)) {
        throw CommandError(fmt::format("there is no ONT {}/{}", ont.port, ont.ont));
    }
    return {ont, target->service, to_text(*target)};
}

/// Has `look` look at the line of a service.
void visit_line(const Simulation& simulation, const ServicePlace& place,
                const std::function<void(const SubscriberLine&)>& look) {
    bool is_served = false;
    visit_lines(simulation.network(), [&](const SubscriberLine& line) {
        if (line.ont->hardware->position == place.ont && line.service->number == place.service && line.served) {
            is_served = true;
            look(line);
        }
    });
    if (!is_served) {
        throw CommandError(fmt::format("{} is not in service", place.text));
    }
}

std::string one_of(const CommandFields& fields, const char* member, std::initializer_list<std::string_view> values) {
    auto value = fields.text(member);
    if (std::ranges::find(values, value) == values.end()) {
        throw CommandError(fmt::format("{} takes {}, not '{}'", member, fmt::join(values, " or "), value));
    }
    return value;
}

/// "239.0.0.N" as N - 1.
std::uint8_t group_of(const CommandFields& fields) {
    constexpr std::string_view before_number = "239.0.0.";
    const auto text = fields.text("address");
    unsigned number = 0;
    if (text.starts_with(before_number)) {
        const auto* const end = text.data() + text.size();
        const auto read = std::from_chars(text.data() + before_number.size(), end, number);
        number = read.ptr == end ? number : 0;
    }
    if (number < 1 || number > multicast_groups) {
        throw CommandError(fmt::format("address must be 239.0.0.1 to 239.0.0.{}, not '{}'", multicast_groups, text));
    }
    return static_cast<std::uint8_t>(number - 1);
}

/// The groups that a service is to have, with one more or less than now.
JoinedGroups changed_groups(const Plant& plant, const SubscriberLine& line, std::uint8_t group, bool joins) {
    if (line.service->multicast_vid == 0 || line.hosts.count() == 0) {
        throw CommandError("nobody watches television there");
    }
    auto groups = line.membership(plant).at(plant.now()).joined;
    if (groups.contains(group) == joins) {
        throw CommandError(fmt::format("239.0.0.{} is {} already", group + 1, joins ? "joined" : "left"));
    }
    if (!joins) {
        groups.remove(group);
        return groups;
    }
    if (groups.count < most_joined_groups) {
        groups.add(group);
    }
    if (admitted(plant.random(), ViewingLimits(*line.ont->settings), groups) != groups || !groups.contains(group)) {
        throw CommandError(fmt::format("the ONT does not admit 239.0.0.{} beside the others", group + 1));
    }
    return groups;
}

} // namespace

core::JsonTree change_leases(Simulation& simulation, const CommandFields& fields) {
    const bool drops = one_of(fields, "lease", {"renew", "drop"}) == "drop";
    const auto place = service_of(simulation, fields);
    unsigned leases = 0;
    visit_line(simulation, place, [&](const SubscriberLine& line) {
        Leases known(simulation.network());
        for (unsigned host = 0; host < line.hosts.count(); ++host) {
            leases += known.last_grant(line, host) ? 1 : 0;
        }
    });
    if (leases == 0) {
        throw CommandError(fmt::format("{} has no lease", place.text));
    }
    simulation.change_subscribers(
        {.at = simulation.plant().now(),
         .kind = EventKind::session,
         .target = place.text,
         .text = fmt::format("{} leases {} by a tester", leases, drops ? "dropped" : "renewed")},
        [&](Plant& plant) { plant.change_leases(place.ont, place.service, drops); });
    core::JsonTree answer(cJSON_CreateObject());
    cJSON_AddNumberToObject(answer.get(), "leases", leases);
    return answer;
}

core::JsonTree change_session(Simulation& simulation, const CommandFields& fields) {
    one_of(fields, "session", {"drop"});
    const auto place = service_of(simulation, fields);
    bool has_session = false;
    visit_line(simulation, place, [&](const SubscriberLine& line) {
        const auto session = PppoeSessions(simulation.network()).find(line);
        has_session = session && session->id != 0;
    });
    if (!has_session) {
        throw CommandError(fmt::format("{} has no session", place.text));
    }
    simulation.change_subscribers({.at = simulation.plant().now(),
                                   .kind = EventKind::session,
                                   .target = place.text,
                                   .text = "PPPoE session dropped by a tester"},
                                  [&](Plant& plant) { plant.end_session(place.ont, place.service); });
    return core::JsonTree(cJSON_CreateObject());
}

core::JsonTree change_groups(Simulation& simulation, const CommandFields& fields) {
    const auto action = one_of(fields, "group", {"join", "leave", "release"});
    const auto place = service_of(simulation, fields);
    std::optional<JoinedGroups> held;
    std::string what = "viewers released by a tester";
    if (action != "release") {
        const bool joins = action == "join";
        const auto group = group_of(fields);
        visit_line(simulation, place,
                   [&](const SubscriberLine& line) { held = changed_groups(simulation.plant(), line, group, joins); });
        what = fmt::format("239.0.0.{} {} by a tester", group + 1, joins ? "joined" : "left");
    } else if (fields.find("address") != nullptr) {
        throw CommandError("release takes no address");
    }
    simulation.change_subscribers(
        {.at = simulation.plant().now(), .kind = EventKind::group, .target = place.text, .text = what},
        [&](Plant& plant) { plant.choose_groups(place.ont, place.service, held); });
    return core::JsonTree(cJSON_CreateObject());
}

core::JsonTree change_traffic(Simulation& simulation, const CommandFields& fields) {
    const bool starts = one_of(fields, "traffic", {"start", "stop"}) == "start";
    const auto place = service_of(simulation, fields);
    const auto name = fields.text("profile");
    const auto* const found = std::ranges::find(traffic_profile_names, starts ? name : "usual");
    if (starts ? found == traffic_profile_names.end() || found == traffic_profile_names.begin() : !name.empty()) {
        throw CommandError(
            fmt::format("traffic starts with the profile {}, and stops without",
                        fmt::join(traffic_profile_names.begin() + 1, traffic_profile_names.end(), " or ")));
    }
    const auto profile = static_cast<TrafficProfile>(found - traffic_profile_names.begin());
    if (!starts && simulation.plant().subscriber_acts().of(place.ont, place.service).profile == profile) {
        throw CommandError(fmt::format("{} has its usual traffic", place.text));
    }
    simulation.change_subscribers({.at = simulation.plant().now(),
                                   .kind = EventKind::session,
                                   .target = place.text,
                                   .text = fmt::format("traffic {} by a tester", *found)},
                                  [&](Plant& plant) { plant.set_profile(place.ont, place.service, profile); });
    return core::JsonTree(cJSON_CreateObject());
}

} // namespace xpon::simulator
