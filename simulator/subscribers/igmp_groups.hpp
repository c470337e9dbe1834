#pragma once

#include "simulator/plant/plant.hpp"
#include "xpon/custom_layer/subscribers.h"
#include "xpon/ranges/vlan_range.h"

#include <vector>

namespace xpon::simulator {

/// The VLANs whose IGMP traffic the OLT looks into.
Bitmap_vlan report_snooping_vlans(const Plant& plant);

/// The groups that subscribers have joined, ascending by VLAN and address.
std::vector<Igmp_group> report_igmp_groups(const Plant& plant);

} // namespace xpon::simulator
