#pragma once

#include "simulator/plant/equipment.hpp"
#include "simulator/plant/fault_kinds.hpp"
#include "simulator/plant/ont_population.hpp"

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace xpon::simulator {

/// A fault that a plant has from the start.
struct InitialFault {
    FaultKind kind;
    std::string_view target;
    double value = 0;
};

struct NamedPlant {
    std::string_view name;
    PlantSize size;
    /// How long the OLT has been running when the simulation begins: its ONTs are in service by then.
    PlantTime uptime;
    double offline_share; ///< ONTs without power
    unsigned split;       ///< ways of the splitter of each PON port
    const BoardModel* board;
    std::array<const ModuleModel*, front_ports> front_modules; ///< null: an empty slot
    std::uint8_t front_links;                                  ///< bit n-1: something at the other end of port n
    std::array<const ModuleModel*, pon_ports> pon_modules;
    std::span<const OntModel> ont_models;
    std::span<const std::uint32_t> ont_vendors; ///< vendor ids [G.984.3 9.2]
    std::span<const InitialFault> faults;
};

inline constexpr std::string_view default_plant = "demo";

std::span<const NamedPlant> named_plants();
/// Null when there is no plant of that name.
const NamedPlant* find_plant(std::string_view name);

} // namespace xpon::simulator
