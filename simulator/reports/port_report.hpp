#pragma once

#include "simulator/plant/plant.hpp"
#include "xpon/custom_layer/front_ports.h"
#include "xpon/custom_layer/pon_ports.h"

#include <optional>

namespace xpon::simulator {

// Ports count from 1 and are ports of the plant.

Bitmap_uplink_port_range report_front_links(const Plant& plant);
Front_port_info report_front_port(const Plant& plant, unsigned port);
/// Empty for a module without diagnostics, and without a module.
std::optional<Front_port_sfp_eddi> report_front_diagnostics(const Plant& plant, unsigned port);

Pon_ports_states report_pon_states(const Plant& plant);
Pon_ports_sfp_extended_information report_pon_modules(const Plant& plant);

} // namespace xpon::simulator
