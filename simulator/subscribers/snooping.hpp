#pragma once

#include "simulator/plant/multicast.hpp"
#include "simulator/subscribers/access_network.hpp"

#include <array>
#include <cstdint>
#include <map>

namespace xpon::simulator {

/// What the OLT knows of a group's members behind a PON port.
struct GroupMembers {
    PlantTime expiry{};      ///< of the last one's membership
    bool stay = false;       ///< one at least has not said that it leaves
    bool any_source = false; ///< one at least speaks IGMPv2, which names no sources [RFC 3376 7.3.2]
};

/// Members by PON port, port 1 first, by group.
using VlanGroups = std::array<std::array<GroupMembers, pon_ports>, multicast_groups>;

/// The VLANs whose IGMP traffic the OLT looks into [RFC 4541].
VlanSet snooping_vlans(const RunningConfiguration& configuration);

/// The memberships that the OLT has seen [RFC 3376], by VLAN.
std::map<std::uint16_t, VlanGroups> snooped_groups(const AccessNetwork& network);

} // namespace xpon::simulator
