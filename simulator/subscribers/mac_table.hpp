#pragma once

#include "simulator/plant/plant.hpp"
#include "xpon/custom_layer/subscribers.h"

#include <vector>

namespace xpon::simulator {

/// The addresses that the switch knows, ascending by (svid, mac): of subscribers, of the network's gateways, and the
/// OLT's own.
std::vector<Bcm_mac_entry> report_mac_table(const Plant& plant);

/// Those behind the ONTs of a range.
std::vector<Bcm_mac_entry> report_mac_table_of_onts(const Plant& plant, const Bitmap_ont_range& range);

} // namespace xpon::simulator
