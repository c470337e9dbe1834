#include "simulator/events/chronicle.hpp"

#include <algorithm>
#include <utility>

namespace xpon::simulator {

void Chronicle::restart(AccessNetwork& network) {
    network.take_touched();
    onts_.restart(network.plant());
    ports_.restart(network.plant());
    subscribers_.restart(network);
}

void Chronicle::look(AccessNetwork& network) {
    ports_.look(network.plant(), events_);
    onts_.look(network.plant(), network.take_touched(), events_);
}

PlantTime Chronicle::next_due(const Plant& plant) const {
    return std::min(onts_.next_due(), PortWatch::next_due(plant));
}

void Chronicle::look_at_subscribers(const AccessNetwork& network) {
    if (network.plant().now() >= subscribers_.next_due()) {
        subscribers_.look(network, events_);
    }
}

std::vector<Event> Chronicle::take() {
    std::ranges::stable_sort(events_, {}, &Event::at);
    return std::exchange(events_, {});
}

} // namespace xpon::simulator
