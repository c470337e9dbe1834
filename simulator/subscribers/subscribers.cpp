#include "simulator/subscribers/subscribers.hpp"

#include <algorithm>

namespace xpon::simulator {
namespace {

using Termination = cfgdb::ProfileOntCrossConnect::Termination;

/// A home has some hosts on its Ethernet ports. A router, or the ONT's own host, is one.
unsigned count_hosts(const Plant& plant, const PhysicalOnt& ont, const ServiceSettings& service) {
    const auto most_hosts = plant.parameters().plant->subscribers.most_hosts;
    const auto key =
        plant.random().number(Purpose::subscriber_hosts, {ont.position.port, ont.position.ont, service.number});
    const auto hosts = service.termination == Termination::bridge ? 1 + static_cast<unsigned>(key % most_hosts) : 1;
    return service.mac_limit == 0 ? hosts : std::min<unsigned>(hosts, service.mac_limit);
}

std::uint8_t host_byte(const ServiceSettings& service, unsigned host) {
    constexpr unsigned numbers_per_service = 16;
    return static_cast<std::uint8_t>(service.number * numbers_per_service + host);
}

} // namespace

MacAddress SubscriberLine::mac_of(unsigned host) const {
    return {0x02,
            0x53,
            0x49,
            static_cast<std::uint8_t>(place.port),
            static_cast<std::uint8_t>(place.ont - 1),
            host_byte(*service, host)};
}

Ipv4Address SubscriberLine::ip_of(unsigned host) const {
    return {10, static_cast<std::uint8_t>(64 + place.port), static_cast<std::uint8_t>(place.ont - 1),
            host_byte(*service, host)};
}

double SubscriberLine::share(const Random& random, Purpose purpose, unsigned host, unsigned which) const {
    const auto& home = ont->hardware->position;
    return random.share(purpose, {home.port, home.ont, host_byte(*service, host), which});
}

PlantTime SubscriberLine::time_between(PlantTime least, PlantTime most, const Random& random, Purpose purpose,
                                       unsigned host) const {
    const auto span = static_cast<double>((most - least).count());
    return least + PlantTime(static_cast<PlantTime::rep>(span * share(random, purpose, host)));
}

void visit_lines(const AccessNetwork& network, const std::function<void(const SubscriberLine&)>& visit) {
    const auto& plant = network.plant();
    for (const auto& [index, settings] : plant.configuration().onts) {
        const auto ont = plant.ont_configured_as(index);
        if (!ont) {
            continue;
        }
        for (const auto& service : settings.services) {
            const auto since = network.services().since(index, service.number);
            if (since == never) {
                continue;
            }
            SubscriberLine line{.index = index,
                                .place = place_of_record(index),
                                .ont = &*ont,
                                .service = &service,
                                .hosts = count_hosts(plant, *ont->hardware, service),
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
