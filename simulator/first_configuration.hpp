#pragma once

#include "simulator/plant/ont_population.hpp"
#include "xpon/core/result.hpp"

namespace xpon::simulator {

/// Puts the first ONTs of the plant, as many as its size says, into the running configuration of an OLT that has none
/// of its own yet; leaves any other OLT as it is. All or none of them.
core::Result<void> configure_fresh_olt(const PlantParameters& parameters);

} // namespace xpon::simulator
