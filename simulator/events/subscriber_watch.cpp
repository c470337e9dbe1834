#include "simulator/events/subscriber_watch.hpp"

#include "simulator/subscribers/leases.hpp"
#include "simulator/subscribers/pppoe_sessions.hpp"
#include "xpon/peer_side/operations.hpp"

#include <algorithm>
#include <chrono>
#include <utility>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

namespace peers = peer_side::peers;

std::string text_of(const MacAddress& mac) {
    return fmt::format("{:02x}", fmt::join(mac, ":"));
}

std::string text_of(const Ipv4Address& ip) {
    return fmt::format("{}", fmt::join(ip, "."));
}

} // namespace

SubscriberWatch::Table SubscriberWatch::table_of(const AccessNetwork& network) {
    const auto& plant = network.plant();
    Table table;
    Leases leases(network);
    PppoeSessions sessions(network);
    visit_lines(network, [&](const SubscriberLine& line) {
        const auto target =
            fmt::format("{}/{}", to_text(ont_target(line.ont->hardware->position)), line.service->number);
        if (line.served_before) {
            table.service_ended[target] = line.served_before->until;
        }
        for (unsigned host = 0; host < line.hosts.count(); ++host) {
            if (const auto granted = leases.last_grant(line, host)) {
                const auto who = fmt::format("{} at {}", text_of(line.ip_of(host)), text_of(line.mac_of(host)));
                table.entries[{target, who}] = {
                    *granted, EventKind::session, peers::dhcp_relay,
                    fmt::format("DHCP lease of {} given for {} s", who,
                                std::chrono::floor<std::chrono::seconds>(LeaseTimes::length).count()),
                    fmt::format("DHCP lease of {} ended", who)};
            }
        }
        if (const auto session = sessions.find(line)) {
            const auto who = session->id == 0 ? "blocked" : fmt::format("{:#06x}", session->id);
            const auto came = session->id == 0
                                  ? std::string("PPPoE client blocked after 10 refusals")
                                  : fmt::format("PPPoE session {} of {} opened", who, text_of(line.mac_of(0)));
            const auto went = session->id == 0 ? std::string("PPPoE client may try again")
                                               : fmt::format("PPPoE session {} closed", who);
            const auto since = plant.now() - session->open_for;
            // One that was closed and opened again is another one, also under the number of before.
            const auto which = session->id == 0 ? who : fmt::format("{} {}", who, since.count());
            table.entries[{target, which}] = {since, EventKind::session, peers::pppoe, came, went};
        }
        if (line.served && line.hosts.count() != 0 && line.service->multicast_vid != 0) {
            const auto viewing = line.membership(plant).at(plant.now());
            for (const auto group : viewing.joined.groups()) {
                const auto address = fmt::format("239.0.0.{}", group + 1);
                table.entries[{target, address}] = {
                    std::max(viewing.since, line.served->since), EventKind::group, peers::igmp,
                    fmt::format("joined {} in VLAN {}", address, line.service->multicast_vid),
                    fmt::format("left {}", address)};
            }
        }
    });
    return table;
}

void SubscriberWatch::restart(const AccessNetwork& network) {
    known_ = table_of(network);
    plan_next(network.plant());
}

void SubscriberWatch::look(const AccessNetwork& network, std::vector<Event>& events) {
    auto present = table_of(network);
    const auto now = network.plant().now();
    const auto end_of = [&](const std::string& target, const Known& known) {
        const auto ended = present.service_ended.find(target);
        return ended != present.service_ended.end() && ended->second > known.since ? ended->second : now;
    };
    for (const auto& [key, known] : known_.entries) {
        if (!present.entries.contains(key)) {
            events.push_back({end_of(key.first, known), known.kind, key.first, known.went, known.by});
        }
    }
    for (const auto& [key, known] : present.entries) {
        if (!known_.entries.contains(key)) {
            events.push_back({std::min(known.since, now), known.kind, key.first, known.came, known.by});
        }
    }
    known_ = std::move(present);
    plan_next(network.plant());
}

void SubscriberWatch::plan_next(const Plant& plant) {
    // A look takes some hundredths of a second when there are thousands of ONTs.
    constexpr std::size_t onts_per_second = 200;
    next_ = plant.now() + std::chrono::seconds(1 + plant.ont_count() / onts_per_second);
}

} // namespace xpon::simulator
