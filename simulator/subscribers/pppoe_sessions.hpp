#pragma once

#include "simulator/plant/plant.hpp"
#include "xpon/custom_layer/subscribers.h"

#include <vector>

namespace xpon::simulator {

/// The sessions that the intermediate agent saw being opened, and those that are blocked, ascending by (port, ONT,
/// service).
std::vector<Pppoe_session> report_pppoe_sessions(const Plant& plant);

} // namespace xpon::simulator
