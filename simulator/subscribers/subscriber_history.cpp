#include "simulator/subscribers/subscriber_history.hpp"

#include "simulator/plant/plant.hpp"

namespace xpon::simulator {

void SubscriberHistory::follow(const Plant& plant) {
    uplinks.follow(plant);
    services.follow(plant.configuration().onts, plant.now());
    pppoe_blocks.follow(plant.faults(), plant.now());
}

} // namespace xpon::simulator
