#include "simulator/control/subscriber_truth.hpp"

#include "simulator/control/json_members.hpp"
#include "simulator/control/ont_truth.hpp"
#include "simulator/subscribers/leases.hpp"
#include "simulator/subscribers/pppoe_sessions.hpp"

#include <array>
#include <string>
#include <string_view>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

std::string_view name_of(cfgdb::ProfileOntCrossConnect::ServiceType type) {
    static constexpr std::array<std::string_view, 4> names{"data", "iptv", "voip", "management"};
    return names.at(static_cast<std::size_t>(type));
}

/// Puts the truth of lines together, one entry each.
class SubscriberTruth {
public:
    explicit SubscriberTruth(const AccessNetwork& network)
        : plant_(network.plant()), leases_(network), sessions_(network) {}

    void add_to(cJSON* list, const SubscriberLine& line) {
        auto* const entry = add_object_to(list);
        const auto& service = *line.service;
        add(entry, "service", fmt::format("{}/{}", text_of(line.ont->hardware->position), service.number));
        add(entry, "type", std::string(name_of(service.type)));
        add(entry, "vlan", service.s_vid);
        cJSON_AddBoolToObject(entry, "up", line.served ? 1 : 0);
        add(entry, "hosts", line.hosts.count());
        add(entry, "leases", leases_of(line));
        add(entry, "session", session_of(line));
        add(entry, "groups", groups_of(line));
        const auto profile = plant_.subscriber_acts().of(line.ont->hardware->position, service.number).profile;
        add(entry, "traffic", std::string(traffic_profile_names.at(static_cast<std::size_t>(profile))));
    }

private:
    unsigned leases_of(const SubscriberLine& line) {
        unsigned count = 0;
        for (unsigned host = 0; host < line.hosts.count(); ++host) {
            count += leases_.last_grant(line, host) ? 1 : 0;
        }
        return count;
    }
    std::string session_of(const SubscriberLine& line) {
        const auto session = sessions_.find(line);
        return !session ? "" : session->id == 0 ? "blocked" : fmt::format("{:#06x}", session->id);
    }
    [[nodiscard]] std::string groups_of(const SubscriberLine& line) const {
        if (!line.served || line.hosts.count() == 0 || line.service->multicast_vid == 0) {
            return "";
        }
        const auto viewing = line.membership(plant_).at(plant_.now());
        std::string text;
        for (const auto group : viewing.joined.groups()) {
            text += fmt::format("{}239.0.0.{}", text.empty() ? "" : " ", group + 1);
        }
        return text;
    }

    const Plant& plant_;
    Leases leases_;
    PppoeSessions sessions_;
};

} // namespace

void add_services(cJSON* object, const AccessNetwork& network, std::uint16_t index) {
    auto* const list = cJSON_AddArrayToObject(object, "services");
    SubscriberTruth truth(network);
    visit_lines(network, [&](const SubscriberLine& line) {
        if (line.index == index) {
            truth.add_to(list, line);
        }
    });
}

core::JsonTree describe_subscribers(const Simulation& simulation) {
    core::JsonTree answer(cJSON_CreateObject());
    add(answer.get(), "time_s", seconds_of(simulation.plant().now()));
    add(answer.get(), "clock_rate", simulation.clock().rate());
    auto* const list = cJSON_AddArrayToObject(answer.get(), "subscribers");
    SubscriberTruth truth(simulation.network());
    visit_lines(simulation.network(), [&](const SubscriberLine& line) { truth.add_to(list, line); });
    return answer;
}

} // namespace xpon::simulator
