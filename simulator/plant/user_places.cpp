#include "simulator/plant/user_places.hpp"

namespace xpon::simulator {
namespace {

using Termination = cfgdb::ProfileOntCrossConnect::Termination;

std::vector<unsigned> wanted_places(const OntModel& model, const ServiceSettings& service) {
    std::vector<unsigned> places;
    if (service.termination == Termination::veip && model.has_router) {
        places.push_back(veip_place);
    }
    for (unsigned port = 0; service.termination == Termination::bridge && port < model.ethernet_ports; ++port) {
        if ((service.uni_ports >> port & 1U) != 0) {
            places.push_back(port);
        }
    }
    return places.empty() ? std::vector{0U} : places;
}

} // namespace

std::vector<unsigned> user_places(const OntModel& model, const OntSettings& settings, const ServiceSettings& service) {
    if (service.termination == Termination::ip_host) {
        return {};
    }
    auto places = wanted_places(model, service);
    std::erase_if(places, [&](unsigned place) {
        return place == veip_place ? !settings.has_router : !settings.user_ports.at(place).enabled;
    });
    return places;
}

} // namespace xpon::simulator
