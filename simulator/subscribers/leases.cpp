#include "simulator/subscribers/leases.hpp"

#include <algorithm>

namespace xpon::simulator {

std::optional<PlantTime> Leases::last_grant(const SubscriberLine& line, unsigned host) {
    const auto& service = *line.service;
    const bool is_static = service.static_ip != 0 && host == 0;
    if (!service.dhcp_agent || is_static) {
        return std::nullopt;
    }
    const auto now = plant_.now();
    const auto& acts = plant_.subscriber_acts().of(line.ont->hardware->position, service.number);
    std::optional<PlantTime> last;
    for (const auto& served : {line.served, line.served_before}) {
        if (!last && served) {
            last = LeaseTimes(line.hosts, host, served->since, uplinks_.of(service.s_vid), acts.leases)
                       .last_grant(std::min(served->until, now + PlantTime(1)));
        }
    }
    return last && *last + LeaseTimes::length > now ? last : std::nullopt;
}

} // namespace xpon::simulator
