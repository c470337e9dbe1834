#pragma once

#include "simulator/simulation/simulation.hpp"
#include "xpon/core/json_tree.hpp"

namespace xpon::simulator {

// What is true of the plant, as JSON objects; also where the OLT has no way of knowing.

/// Time, clock, faults, and how many ONTs are in each state.
core::JsonTree describe_summary(const Simulation& simulation);
/// The summary, every port and every physical ONT.
core::JsonTree describe_all(const Simulation& simulation);
/// The kinds of faults and what they take.
core::JsonTree describe_fault_kinds();

} // namespace xpon::simulator
