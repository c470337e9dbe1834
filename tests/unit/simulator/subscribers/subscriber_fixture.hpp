#pragma once

#include "simulator/subscribers/access_network.hpp"
#include "tests/unit/simulator/plant/plant_fixture.hpp"

namespace xpon::simulator {

/// ONTs 1/1, 2/1 and so on with services of subscribers.
class SubscriberTest : public PlantEvents {
protected:
    explicit SubscriberTest(unsigned onts)
        : network(parameters(onts), configured(parameters(onts), onts, subscriber_services)) {
        network.advance(std::chrono::minutes(5));
    }

    [[nodiscard]] const Plant& present() const override {
        return plant;
    }
    void advance(PlantTime now) override {
        network.advance(now);
    }
    void happen(const std::function<void(Plant&)>& event) override {
        network.happen(event);
    }

    AccessNetwork network;
    const Plant& plant = network.plant();
};

} // namespace xpon::simulator
