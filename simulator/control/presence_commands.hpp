#pragma once

#include "simulator/control/command_fields.hpp"
#include "simulator/simulation/simulation.hpp"
#include "xpon/core/json_tree.hpp"

namespace xpon::simulator {

// Commands about which ONTs are there. They throw CommandError.

/// {"power": "on" | "off", "ont": PLACE}, with "pon": PORT instead all ONTs of a port, with neither all.
core::JsonTree switch_power(Simulation& simulation, const CommandFields& fields);
/// {"add": PLACE, "model": TEXT, "serial_number": TEXT}: an ONT where none was.
core::JsonTree add_ont(Simulation& simulation, const CommandFields& fields);
/// {"swap": PLACE, ...}: another one in the place of the one that is there; with a serial number of its own.
core::JsonTree swap_ont(Simulation& simulation, const CommandFields& fields);
/// {"move": PLACE, "pon": PORT}: it is plugged into the fibre of another port, or back into its own.
core::JsonTree move_ont(Simulation& simulation, const CommandFields& fields);

/// The place of a physical ONT that a member names; it must be one of the plant's.
OntPosition known_ont(const Simulation& simulation, const std::string& text);

} // namespace xpon::simulator
