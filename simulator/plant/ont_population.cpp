#include "simulator/plant/ont_population.hpp"

#include "simulator/plant/plant_description.hpp"

#include <algorithm>

#include <fmt/format.h>

namespace xpon::simulator {

PhysicalOnt make_ont(const PlantParameters& parameters, unsigned nth) {
    const auto& planned = parameters.plant->onts;
    return make_ont(parameters, parameters.size.onts <= planned.size() ? planned[nth] : position_of(nth));
}

PhysicalOnt make_ont(const PlantParameters& parameters, const OntPosition& position) {
    const Random random(parameters.seed);
    const auto& plant = *parameters.plant;
    const auto& port = plant.pon.at(position.port - 1);
    const auto found = plant.single_onts.find(position);
    const auto plan = found == plant.single_onts.end() ? OntPlan{} : found->second;
    const auto chosen = random.number(Purpose::ont_model, {position.port, position.ont}) % plant.ont_models.size();
    const auto& model = plant.ont_models.at(plan.model.value_or(chosen));
    const bool has_power = random.share(Purpose::ont_power, {position.port, position.ont}) >= plant.offline_share;
    PhysicalOnt ont{.position = position,
                    .serial = plan.serial.value_or(serial_of(position, model.vendor)),
                    .model = &model,
                    .path = path_of(random, position, port.least_km, port.most_km),
                    .is_switched_on = plan.is_switched_on.value_or(has_power)};
    ont.path.distance_km = plan.distance_km.value_or(ont.path.distance_km);
    return ont;
}

std::string password_of(const OntPosition& position) {
    return fmt::format("PW{:02}{:03}", position.port, position.ont);
}

std::uint8_t PlantDescription::template_of(const OntPosition& ont) const {
    const auto row = std::ranges::find_if(
        services, [&](const ServicePlan& plan) { return plan.first_ont <= ont.ont && ont.ont <= plan.last_ont; });
    return row == services.end() ? std::uint8_t{1} : row->ont_template;
}

std::string complaint_about(const PlantDescription& plant, const FaultTarget& target) {
    using Where = FaultTarget::Where;
    const bool is_of_ont = target.where == Where::ont || target.where == Where::service;
    if (is_of_ont && std::ranges::find(plant.onts, OntPosition{target.port, target.ont}) == plant.onts.end()) {
        return fmt::format("there is no ONT {}/{}", target.port, target.ont);
    }
    const bool is_empty = (target.where == Where::front_port && !plant.front.at(target.port - 1U).module) ||
                          (target.where == Where::pon_port && !plant.pon.at(target.port - 1U).module);
    return is_empty ? fmt::format("there is no module in {}", to_text(target)) : "";
}

} // namespace xpon::simulator
