#include "simulator/plant/service_use.hpp"

#include "simulator/plant/lease_times.hpp"
#include "simulator/plant/session_times.hpp"

#include <algorithm>

namespace xpon::simulator {
namespace {

/// The stretches in which there is at least one of these.
std::vector<Stretch> united(std::vector<Stretch> stretches) {
    std::ranges::sort(stretches, {}, &Stretch::since);
    std::vector<Stretch> sum;
    for (const auto& stretch : stretches) {
        if (!sum.empty() && stretch.since <= sum.back().until) {
            sum.back().until = std::max(sum.back().until, stretch.until);
        } else {
            sum.push_back(stretch);
        }
    }
    return sum;
}

std::vector<Stretch> leased(const ServiceHosts& hosts, const ServiceSettings& service, PlantTime since,
                            const std::vector<Stretch>& uplinks, const std::vector<LeaseAct>& acts) {
    if (service.static_ip != 0) {
        return uplinks; // the first host needs no lease
    }
    std::vector<Stretch> stretches;
    for (unsigned host = 0; host < hosts.count(); ++host) {
        std::ranges::copy(LeaseTimes(hosts, host, since, uplinks, acts).usable(), std::back_inserter(stretches));
    }
    return united(std::move(stretches));
}

std::vector<Stretch> usable(const ServiceHosts& hosts, const Circumstances& given, const PhysicalOnt& ont,
                            const ServiceSettings& service, PlantTime since) {
    if (hosts.count() == 0) {
        return {};
    }
    const auto uplinks = given.uplinks.stretches_of(service.s_vid);
    std::vector<Stretch> stretches;
    const auto add = [&](const std::vector<Stretch>& more) { std::ranges::copy(more, std::back_inserter(stretches)); };
    if (service.dhcp_agent) {
        add(leased(hosts, service, since, uplinks, given.acts.of(ont.position, service.number).leases));
    }
    if (service.pppoe_agent) {
        const auto& blocks = given.pppoe_blocks.of(ont.position, service.number);
        for (const auto& session : session_times(since, session_delay(hosts), uplinks, blocks)) {
            add(session.usable);
        }
    }
    if (!service.dhcp_agent && !service.pppoe_agent) {
        add(uplinks);
    }
    return common(united(std::move(stretches)), {{since, never}});
}

} // namespace

ServiceUse::ServiceUse(const Circumstances& given, const PhysicalOnt& ont, const OntSettings& settings,
                       const ServiceSettings& service, PlantTime since)
    : hosts(given.parameters, ont, settings, service),
      usable(xpon::simulator::usable(hosts, given, ont, service, since)) {
    if (service.multicast_vid != 0) {
        streams = common(usable, given.uplinks.stretches_of(service.multicast_vid));
    }
}

PlantTime session_delay(const ServiceHosts& hosts) {
    using namespace std::chrono_literals;
    return hosts.time_between(3s, 10s, Purpose::session_delay, 0);
}

std::vector<Stretch> common(const std::vector<Stretch>& one, const std::vector<Stretch>& other) {
    std::vector<Stretch> both;
    for (auto left = one.begin(), right = other.begin(); left != one.end() && right != other.end();) {
        const Stretch part{std::max(left->since, right->since), std::min(left->until, right->until)};
        if (part.since < part.until) {
            both.push_back(part);
        }
        ++(left->until < right->until ? left : right);
    }
    return both;
}

} // namespace xpon::simulator
