#include "simulator/plant/service_hosts.hpp"

#include "simulator/plant/plant_description.hpp"
#include "simulator/plant/user_places.hpp"

#include <algorithm>

namespace xpon::simulator {
namespace {

using Termination = cfgdb::ProfileOntCrossConnect::Termination;

/// As many addresses as the Ethernet ports let through; 0 = no limit.
unsigned port_limit(const std::vector<unsigned>& places, const OntSettings& settings) {
    unsigned sum = 0;
    for (const auto place : places) {
        const unsigned limit = place == veip_place ? 0 : settings.user_ports.at(place).mac_limit;
        if (limit == 0) {
            return 0;
        }
        sum += limit;
    }
    return sum;
}

/// A home has some hosts on its Ethernet ports. A router, or the ONT's own host, is one.
unsigned count_hosts(const PlantParameters& plant, const PhysicalOnt& ont, const OntSettings& settings,
                     const ServiceSettings& service) {
    const auto places = user_places(*ont.model, settings, service);
    if (places.empty() && service.termination != Termination::ip_host) {
        return 0;
    }
    const auto most_hosts = plant.plant->subscribers.most_hosts;
    const auto key =
        Random(plant.seed).number(Purpose::subscriber_hosts, {ont.position.port, ont.position.ont, service.number});
    unsigned hosts = service.termination == Termination::bridge ? 1 + static_cast<unsigned>(key % most_hosts) : 1;
    for (const unsigned limit : {unsigned{service.mac_limit}, port_limit(places, settings)}) {
        hosts = limit == 0 ? hosts : std::min(hosts, limit);
    }
    return hosts;
}

} // namespace

ServiceHosts::ServiceHosts(const PlantParameters& plant, const PhysicalOnt& ont, const OntSettings& settings,
                           const ServiceSettings& service)
    : random_(plant.seed), home_(ont.position), service_(service.number),
      count_(count_hosts(plant, ont, settings, service)) {}

std::uint8_t ServiceHosts::number(unsigned host) const {
    constexpr unsigned numbers_per_service = 16;
    return static_cast<std::uint8_t>(service_ * numbers_per_service + host);
}

PlantTime ServiceHosts::time_between(PlantTime least, PlantTime most, Purpose purpose, unsigned host) const {
    const auto span = static_cast<double>((most - least).count());
    return least + PlantTime(static_cast<PlantTime::rep>(span * share(purpose, host)));
}

double ServiceHosts::share(Purpose purpose, unsigned host, unsigned which) const {
    return random_.share(purpose, {home_.port, home_.ont, number(host), which});
}

} // namespace xpon::simulator
