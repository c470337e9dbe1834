#pragma once

#include "simulator/plant/optics.hpp"
#include "simulator/plant/plant_time.hpp"
#include "simulator/plant/random.hpp"

#include <cstdint>
#include <string>

namespace xpon::simulator {

struct PlantDescription;
struct OntModel;

/// How many physical ONTs there are, and how many of them the configuration of a fresh OLT knows.
struct PlantSize {
    unsigned onts = 0;
    unsigned configured = 0; ///< at most `onts`; the first ones
};

/// A plant as it is asked for.
struct PlantParameters {
    const PlantDescription* plant = nullptr;
    PlantSize size;
    std::uint64_t seed = 1;
    PlantTime past{}; ///< how long the OLT has been running when the simulation begins
};

/// A physical ONT and its fibre: what never changes about it.
struct PhysicalOnt {
    OntPosition position;
    std::uint64_t serial;
    const OntModel* model;
    OntPath path;
    bool is_switched_on;
};

/// The `nth` ONT of the plant, from 0. More than the plant has by itself are spread over the PON ports.
PhysicalOnt make_ont(const PlantParameters& parameters, unsigned nth);
/// The ONT at a place of the plant.
PhysicalOnt make_ont(const PlantParameters& parameters, const OntPosition& position);

/// The PLOAM password that the ONT sends: "PW" and its place, "PW03017".
std::string password_of(const OntPosition& position);

} // namespace xpon::simulator
