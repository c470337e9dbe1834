#pragma once

#include "simulator/simulation/simulation.hpp"
#include "xpon/core/json_tree.hpp"

#include <string>

namespace xpon::simulator {

// What is true of ONTs and of the PON ports that they are on, as JSON.

/// "OPERATIONAL", and "GONE" for one that is not on the PON.
std::string text_of(Ont_state state);
/// "3/17"
std::string text_of(const OntPosition& ont);

/// Adds what is true of an ONT, and of one in service what the OLT counts, whether or not it is to tell.
void add_ont(cJSON* entry, const Plant& plant, const Plant::Ont& ont);

/// One ONT, which there must be, with its line and the subscribers behind it.
core::JsonTree describe_ont(const Simulation& simulation, const OntPosition& place);
/// A PON port, and the ONTs that are seen on it.
core::JsonTree describe_pon_port(const Simulation& simulation, unsigned port);

} // namespace xpon::simulator
