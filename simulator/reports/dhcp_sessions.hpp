#pragma once

#include "simulator/plant/plant.hpp"
#include "xpon/custom_layer/subscribers.h"

#include <vector>

namespace xpon::simulator {

/// The leases that the relay agent saw being given, ascending by (port, ONT, service, host).
std::vector<Dhcp_session> report_dhcp_sessions(const Plant& plant);

} // namespace xpon::simulator
