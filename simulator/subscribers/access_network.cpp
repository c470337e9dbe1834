#include "simulator/subscribers/access_network.hpp"

namespace xpon::simulator {

AccessNetwork::AccessNetwork(const PlantParameters& parameters, RunningConfiguration configuration)
    : plant_(parameters, std::move(configuration)) {
    remember();
}

void AccessNetwork::advance(PlantTime now) {
    plant_.advance(now);
}

void AccessNetwork::change_configuration(const RunningConfiguration& configuration, const ChangedOnts& onts) {
    plant_.change_configuration(configuration, onts);
    services_.follow(plant_.configuration().onts, onts, plant_.now());
}

void AccessNetwork::remember() {
    services_.follow(plant_.configuration().onts, plant_.now());
}

} // namespace xpon::simulator
