#include "simulator/subscribers/access_network.hpp"

namespace xpon::simulator {

AccessNetwork::AccessNetwork(const PlantParameters& parameters, RunningConfiguration configuration)
    : plant_(parameters, std::move(configuration)) {
    remember();
}

void AccessNetwork::advance(PlantTime now) {
    // A fault that ends by itself is an event of its own.
    while (plant_.faults().next_end() <= now) {
        plant_.advance(plant_.faults().next_end());
        remember();
    }
    plant_.advance(now);
}

void AccessNetwork::change_configuration(const RunningConfiguration& configuration, const ChangedOnts& onts) {
    plant_.change_configuration(configuration, onts);
    uplinks_.follow(plant_);
    services_.follow(plant_.configuration().onts, onts, plant_.now());
}

void AccessNetwork::remember() {
    uplinks_.follow(plant_);
    services_.follow(plant_.configuration().onts, plant_.now());
    pppoe_blocks_.follow(plant_.faults(), plant_.now());
}

} // namespace xpon::simulator
