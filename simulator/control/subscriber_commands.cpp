#include "simulator/control/subscriber_commands.hpp"

#include "simulator/subscribers/leases.hpp"
#include "simulator/subscribers/pppoe_sessions.hpp"

#include <algorithm>
#include <functional>
#include <initializer_list>
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

} // namespace xpon::simulator
