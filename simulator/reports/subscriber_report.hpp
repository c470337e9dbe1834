#pragma once

#include "simulator/subscribers/access_network.hpp"
#include "xpon/custom_layer/subscribers.h"
#include "xpon/ranges/vlan_range.h"

#include <vector>

namespace xpon::simulator {

/// The leases that the relay agent saw being given, ascending by (port, ONT, service, host).
std::vector<Dhcp_session> report_dhcp_sessions(const AccessNetwork& network);

/// The sessions that the intermediate agent saw being opened, and those that are blocked, ascending by (port, ONT,
/// service).
std::vector<Pppoe_session> report_pppoe_sessions(const AccessNetwork& network);

/// The addresses that the switch knows, ascending by (svid, mac): of subscribers, of the network's gateways, and the
/// OLT's own.
std::vector<Bcm_mac_entry> report_mac_table(const AccessNetwork& network);
/// Those behind the ONTs of a range.
std::vector<Bcm_mac_entry> report_mac_table_of_onts(const AccessNetwork& network, const Bitmap_ont_range& range);

/// The VLANs whose IGMP traffic the OLT looks into.
Bitmap_vlan report_snooping_vlans(const Plant& plant);
/// The groups that subscribers have joined, ascending by VLAN and address.
std::vector<Igmp_group> report_igmp_groups(const AccessNetwork& network);

} // namespace xpon::simulator
