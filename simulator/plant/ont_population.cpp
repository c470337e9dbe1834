#include "simulator/plant/ont_population.hpp"

#include "simulator/plant/named_plants.hpp"

#include <fmt/format.h>

namespace xpon::simulator {

PhysicalOnt make_ont(const PlantParameters& parameters, unsigned nth) {
    const Random random(parameters.seed);
    const auto position = position_of(nth);
    const auto choose = [&](const auto& choices, Purpose purpose) -> const auto& {
        return choices[random.number(purpose, {position.port, position.ont}) % choices.size()];
    };
    const auto& plant = *parameters.plant;
    return {.position = position,
            .serial = serial_of(position, choose(plant.ont_vendors, Purpose::ont_vendor)),
            .model = &choose(plant.ont_models, Purpose::ont_model),
            .path = path_of(random, position),
            .is_switched_on = random.share(Purpose::ont_power, {position.port, position.ont}) >= plant.offline_share};
}

std::string password_of(const OntPosition& position) {
    return fmt::format("PW{:02}{:03}", position.port, position.ont);
}

} // namespace xpon::simulator
