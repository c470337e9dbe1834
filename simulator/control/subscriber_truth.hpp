#pragma once

#include "simulator/simulation/simulation.hpp"
#include "xpon/core/json_tree.hpp"

#include <cstdint>

namespace xpon::simulator {

// What is true of the subscribers, as JSON.

/// Adds a list "services" of the ONT configured under a flat index: their hosts, leases, sessions and groups.
void add_services(cJSON* object, const AccessNetwork& network, std::uint16_t index);
/// The services of all ONTs that are seen where they are configured.
core::JsonTree describe_subscribers(const Simulation& simulation);

} // namespace xpon::simulator
