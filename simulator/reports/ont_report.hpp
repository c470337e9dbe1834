#pragma once

#include "simulator/plant/plant.hpp"
#include "xpon/custom_layer/onts.h"

#include <vector>

namespace xpon::simulator {

/// The activated ONTs of the range that are configured where they are seen, ascending by configured place.
std::vector<Ont__state_info> report_ont_states(const Plant& plant, const Bitmap_ont_range& range);

/// The ONTs whose serial number was heard on ports of the range and that are not configured there or cannot be
/// activated, ascending by port, then serial.
std::vector<Ont_unactivated_entry> report_unactivated(const Plant& plant, const Bitmap_pon_port_range& range);

} // namespace xpon::simulator
