#include "simulator/subscribers/snooping.hpp"

#include "simulator/subscribers/subscribers.hpp"

#include <algorithm>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;

// RFC 3376 clause 8.
constexpr PlantTime query_interval = 125s;
constexpr PlantTime query_response_interval = 10s;
constexpr PlantTime membership_interval = 260s;
constexpr PlantTime last_member_query_time = 2s;

/// The groups of all VLANs, put together from those who watch.
class Snooping {
public:
    explicit Snooping(const Plant& plant) : plant_(plant) {}

    void add(const SubscriberLine& line) {
        if (line.service->multicast_vid == 0 || line.hosts.count() == 0) {
            return;
        }
        const auto membership = line.membership(plant_);
        if (line.served) {
            add(line, membership, *line.served);
        }
        // Nobody says that an ONT is lost, except the PON port that goes down with it.
        const auto& situation = *line.ont->situation;
        if (const auto& before = line.served_before;
            before && situation.channel_is_up && situation.channel_since <= before->since) {
            add(line, membership, *before);
        }
    }

    [[nodiscard]] std::map<std::uint16_t, VlanGroups> take() {
        return std::move(vlans_);
    }

private:
    void add(const SubscriberLine& line, const Membership& membership, const Stretch& served) {
        const auto heard_last = std::min(plant_.now(), served.until);
        const auto viewing = membership.at(heard_last);
        const auto joined = std::max(viewing.since, served.since);
        for (const auto group : viewing.joined.groups()) {
            add(line, group,
                {last_report(line, joined, heard_last) + membership_interval, true, names_no_source(line)});
        }
        const bool changed = viewing.since > served.since;
        if (!changed || line.ont->settings->immediate_leave) {
            return;
        }
        const auto before = membership.at(viewing.since - PlantTime(1));
        for (const auto group : before.joined.groups()) {
            if (!viewing.joined.contains(group)) {
                add(line, group, {viewing.since + last_member_query_time, false, names_no_source(line)});
            }
        }
    }

    void add(const SubscriberLine& line, std::uint8_t group, const GroupMembers& member) {
        if (member.expiry <= plant_.now()) {
            return;
        }
        auto& members = vlans_[line.service->multicast_vid].at(group).at(line.place.port - 1);
        members.expiry = std::max(members.expiry, member.expiry);
        members.stay = members.stay || member.stay;
        members.any_source = members.any_source || member.any_source;
    }

    static bool names_no_source(const SubscriberLine& line) {
        return line.ont->settings->igmp_version == cfgdb::ProfileOntPortsCfg::IgmpVersion::v2;
    }

    /// When a member that joined at `joined` last answered a query, up to `now`.
    [[nodiscard]] PlantTime last_report(const SubscriberLine& line, PlantTime joined, PlantTime now) const {
        const auto delay = line.hosts.time_between(0s, query_response_interval, Purpose::membership_report, 0);
        const auto answer = now < delay ? PlantTime{} : (now - delay) / query_interval * query_interval + delay;
        return std::max(joined, answer);
    }

    const Plant& plant_;
    std::map<std::uint16_t, VlanGroups> vlans_;
};

} // namespace

VlanSet snooping_vlans(const RunningConfiguration& configuration) {
    VlanSet vlans;
    for (const auto& [index, ont] : configuration.onts) {
        for (const auto& service : ont.services) {
            const auto vid = service.multicast_vid != 0 ? service.multicast_vid
                             : service.igmp_snooping    ? service.s_vid
                                                        : std::uint16_t{0};
            if (vid < vlans.size()) {
                vlans.set(vid);
            }
        }
    }
    return vlans;
}

std::map<std::uint16_t, VlanGroups> snooped_groups(const AccessNetwork& network) {
    Snooping snooping(network.plant());
    visit_lines(network, [&](const SubscriberLine& line) { snooping.add(line); });
    return snooping.take();
}

} // namespace xpon::simulator
