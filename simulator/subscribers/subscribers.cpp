#include "simulator/subscribers/subscribers.hpp"

#include <algorithm>

namespace xpon::simulator {

Membership SubscriberLine::membership(const Plant& plant) const {
    const auto& position = ont->hardware->position;
    return {plant.random(), position, service->number, ViewingLimits(*ont->settings),
            plant.subscriber_acts().of(position, service->number).groups};
}

MacAddress SubscriberLine::mac_of(unsigned host) const {
    return {0x02,
            0x53,
            0x49,
            static_cast<std::uint8_t>(place.port),
            static_cast<std::uint8_t>(place.ont - 1),
            hosts.number(host)};
}

Ipv4Address SubscriberLine::ip_of(unsigned host) const {
    return {10, static_cast<std::uint8_t>(64 + place.port), static_cast<std::uint8_t>(place.ont - 1),
            hosts.number(host)};
}

void visit_lines(const AccessNetwork& network, const std::function<void(const SubscriberLine&)>& visit) {
    const auto& plant = network.plant();
    for (std::uint16_t index = 0; index < max_onts; ++index) {
        const auto ont = plant.ont_configured_as(index);
        if (!ont) {
            continue;
        }
        for (const auto& service : ont->settings->services) {
            const auto since = network.services().since(index, service.number);
            if (since == never) {
                continue;
            }
            SubscriberLine line{.index = index,
                                .place = place_of_record(index),
                                .ont = &*ont,
                                .service = &service,
                                .hosts = {plant.parameters(), *ont->hardware, *ont->settings, service},
                                .served = {},
                                .served_before = {}};
            if (ont->point.state == ont_operational) {
                line.served = {std::max(ont->point.since, since), never};
            }
            if (const auto& last = ont->last_service; last && last->until > since) {
                line.served_before = {std::max(last->since, since), last->until};
            }
            visit(line);
        }
    }
}

} // namespace xpon::simulator
