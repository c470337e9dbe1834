#include "simulator/plant/uplinks.hpp"
#include "simulator/reports/subscriber_report.hpp"
#include "simulator/subscribers/snooping.hpp"

#include <algorithm>
#include <tuple>

namespace xpon::simulator {
namespace {

/// Most groups are watched the old way, whoever sends; of some the source is chosen, of some one is not wanted.
void put_sources(Igmp_group& group, const Random& random, unsigned number, const VlanGroups::value_type& members) {
    if (std::ranges::any_of(members, &GroupMembers::any_source)) {
        group.filter_mode = igmp_exclude;
        return;
    }
    const auto kind = random.number(Purpose::group_sources, {number}) % 8;
    group.filter_mode = kind < 2 ? igmp_include : igmp_exclude;
    group.source_count = static_cast<std::uint8_t>(kind < 2 ? 1 + kind : kind == 2 ? 1 : 0);
    for (unsigned nth = 0; nth < group.source_count; ++nth) {
        // A network for documentation [RFC 5737].
        const std::uint8_t address[]{198, 51, 100, static_cast<std::uint8_t>(number + 1 + nth * multicast_groups)};
        std::ranges::copy(address, group.sources[nth].ip);
        group.sources[nth].filter_mode = group.filter_mode;
    }
}

void add_port(Igmp_group& group, Switch_port_kind kind, unsigned number, std::uint32_t expires_sec) {
    group.ports[group.port_count++] = {.kind = kind,
                                       .unit = 1,
                                       .number = static_cast<std::uint8_t>(number),
                                       .is_static = static_cast<std::uint8_t>(expires_sec == 0 ? 1 : 0),
                                       .expires_sec = expires_sec};
}

void add_router_ports(Igmp_group& group, const RunningConfiguration& configuration) {
    std::vector<UplinkPort> known;
    for (unsigned port = 1; port <= front_ports; ++port) {
        const auto& settings = configuration.front.at(port - 1);
        const auto place = uplink_port_of(configuration, port);
        if (settings.enabled && settings.is_multicast_router && settings.vlans[group.vlan] &&
            std::ranges::find(known, place) == known.end()) {
            known.push_back(place);
            add_port(group, place.kind, place.number, 0);
        }
    }
}

void add_members(Igmp_group& group, const VlanGroups::value_type& members, PlantTime now) {
    group.is_in_deletion_queue = 1;
    for (unsigned port = 1; port <= pon_ports; ++port) {
        const auto& [expiry, stay, any_source] = members.at(port - 1);
        if (expiry > now) {
            const auto left = std::chrono::ceil<std::chrono::seconds>(expiry - now);
            add_port(group, switch_port_pon, port, static_cast<std::uint32_t>(left.count()));
        }
        group.is_in_deletion_queue = stay ? 0 : group.is_in_deletion_queue;
    }
}

} // namespace

Bitmap_vlan report_snooping_vlans(const Plant& plant) {
    Bitmap_vlan bitmap{.size = max_vlan_id + 1U, .bits = {}};
    const auto vlans = snooping_vlans(plant.configuration());
    for (std::uint16_t vid = 1; vid <= max_vlan_id; ++vid) {
        if (vlans[vid]) {
            bitfield_set_bit(bitmap.bits, bitmap.size, vid);
        }
    }
    return bitmap;
}

std::vector<Igmp_group> report_igmp_groups(const AccessNetwork& network) {
    const auto& plant = network.plant();
    std::vector<Igmp_group> groups;
    for (const auto& [vid, members_of_vlan] : snooped_groups(network)) {
        for (unsigned number = 0; number < multicast_groups; ++number) {
            const auto& members = members_of_vlan.at(number);
            if (std::ranges::none_of(members, [&](const GroupMembers& port) { return port.expiry > plant.now(); })) {
                continue;
            }
            auto& group = groups.emplace_back();
            const std::uint8_t address[]{239, 0, 0, static_cast<std::uint8_t>(number + 1)};
            std::ranges::copy(address, group.address);
            group.vlan = vid;
            put_sources(group, plant.random(), number, members);
            add_router_ports(group, plant.configuration());
            add_members(group, members, plant.now());
            std::ranges::sort(std::span(group.ports, group.port_count), {},
                              [](const Igmp_member_port& port) { return std::tuple(port.kind, port.number); });
        }
    }
    return groups;
}

} // namespace xpon::simulator
