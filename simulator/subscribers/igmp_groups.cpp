#include "simulator/subscribers/igmp_groups.hpp"

#include "simulator/plant/multicast.hpp"
#include "simulator/subscribers/subscribers.hpp"
#include "simulator/subscribers/uplinks.hpp"

#include <algorithm>
#include <map>
#include <tuple>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;

// RFC 3376 clause 8.
constexpr PlantTime query_interval = 125s;
constexpr PlantTime query_response_interval = 10s;
constexpr PlantTime membership_interval = 260s;
constexpr PlantTime last_member_query_time = 2s;

/// What the OLT knows of the members behind a PON port.
struct Members {
    PlantTime expiry{}; ///< of the last one's membership
    bool stay = false;  ///< one at least has not said that it leaves
};

using GroupMembers = std::array<Members, pon_ports>; // port 1 first
using VlanMembers = std::array<GroupMembers, multicast_groups>;

/// The groups of all VLANs, put together from those who watch.
class Snooping {
public:
    explicit Snooping(const Plant& plant) : plant_(plant) {}

    void add(const SubscriberLine& line) {
        if (line.service->multicast_vid == 0) {
            return;
        }
        const Viewer viewer(plant_.random(), line.ont->hardware->position, line.service->number,
                            line.ont->settings->max_groups);
        if (line.served) {
            add(line, viewer, *line.served);
        }
        // Nobody says that an ONT is lost, except the PON port that goes down with it.
        const auto& situation = *line.ont->situation;
        if (const auto& before = line.served_before;
            before && situation.channel_is_up && situation.channel_since <= before->since) {
            add(line, viewer, *before);
        }
    }

    [[nodiscard]] const std::map<std::uint16_t, VlanMembers>& vlans() const {
        return vlans_;
    }

private:
    void add(const SubscriberLine& line, const Viewer& viewer, const Stretch& served) {
        const auto heard_last = std::min(plant_.now(), served.until);
        const auto viewing = viewer.at(heard_last);
        const auto joined = std::max(viewing.since, served.since);
        for (const auto group : viewing.groups()) {
            add(line, group, {last_report(line, joined, heard_last) + membership_interval, true});
        }
        const bool changed = viewing.since > served.since;
        if (!changed || line.ont->settings->immediate_leave) {
            return;
        }
        const auto before = viewer.at(viewing.since - PlantTime(1));
        for (const auto group : before.groups()) {
            if (std::ranges::find(viewing.groups(), group) == viewing.groups().end()) {
                add(line, group, {viewing.since + last_member_query_time, false});
            }
        }
    }

    void add(const SubscriberLine& line, std::uint8_t group, const Members& member) {
        if (member.expiry <= plant_.now()) {
            return;
        }
        auto& members = vlans_[line.service->multicast_vid].at(group).at(line.place.port - 1);
        members.expiry = std::max(members.expiry, member.expiry);
        members.stay = members.stay || member.stay;
    }

    /// When a member that joined at `joined` last answered a query, up to `now`.
    [[nodiscard]] PlantTime last_report(const SubscriberLine& line, PlantTime joined, PlantTime now) const {
        const auto delay =
            line.time_between(0s, query_response_interval, plant_.random(), Purpose::membership_report, 0);
        const auto answer = now < delay ? PlantTime{} : (now - delay) / query_interval * query_interval + delay;
        return std::max(joined, answer);
    }

    const Plant& plant_;
    std::map<std::uint16_t, VlanMembers> vlans_;
};

/// Most groups are watched the old way, whoever sends; of some the source is chosen, of some one is not wanted.
void put_sources(Igmp_group& group, const Random& random, unsigned number) {
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

void add_members(Igmp_group& group, const GroupMembers& members, PlantTime now) {
    group.is_in_deletion_queue = 1;
    for (unsigned port = 1; port <= pon_ports; ++port) {
        const auto& [expiry, stay] = members.at(port - 1);
        if (expiry > now) {
            const auto left = std::chrono::ceil<std::chrono::seconds>(expiry - now);
            add_port(group, switch_port_pon, port, static_cast<std::uint32_t>(left.count()));
        }
        group.is_in_deletion_queue = stay ? 0 : group.is_in_deletion_queue;
    }
}

} // namespace

Bitmap_vlan report_snooping_vlans(const Plant& plant) {
    Bitmap_vlan vlans{.size = max_vlan_id + 1U, .bits = {}};
    for (const auto& [index, ont] : plant.configuration().onts) {
        for (const auto& service : ont.services) {
            const auto vid = service.multicast_vid != 0 ? service.multicast_vid
                             : service.igmp_snooping    ? service.s_vid
                                                        : std::uint16_t{0};
            if (vid != 0 && vid <= max_vlan_id) {
                vlans.bits[vid / 8] = static_cast<std::uint8_t>(vlans.bits[vid / 8] | 1U << vid % 8);
            }
        }
    }
    return vlans;
}

std::vector<Igmp_group> report_igmp_groups(const Plant& plant) {
    Snooping snooping(plant);
    visit_lines(plant, [&](const SubscriberLine& line) { snooping.add(line); });
    std::vector<Igmp_group> groups;
    for (const auto& [vid, members_of_vlan] : snooping.vlans()) {
        for (unsigned number = 0; number < multicast_groups; ++number) {
            const auto& members = members_of_vlan.at(number);
            if (std::ranges::none_of(members, [&](const Members& port) { return port.expiry > plant.now(); })) {
                continue;
            }
            auto& group = groups.emplace_back();
            const std::uint8_t address[]{239, 0, 0, static_cast<std::uint8_t>(number + 1)};
            std::ranges::copy(address, group.address);
            group.vlan = vid;
            put_sources(group, plant.random(), number);
            add_router_ports(group, plant.configuration());
            add_members(group, members, plant.now());
            std::ranges::sort(std::span(group.ports, group.port_count), {},
                              [](const Igmp_member_port& port) { return std::tuple(port.kind, port.number); });
        }
    }
    return groups;
}

} // namespace xpon::simulator
