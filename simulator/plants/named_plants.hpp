#pragma once

#include "simulator/plant/plant_description.hpp"

#include <span>
#include <string_view>

namespace xpon::simulator {

inline constexpr std::string_view default_plant = "demo";

/// The plants that come along, made of the descriptions in this folder.
std::span<const PlantDescription> named_plants();
/// Null when there is no plant of that name.
const PlantDescription* find_plant(std::string_view name);

} // namespace xpon::simulator
