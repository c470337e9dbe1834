#pragma once

#include <cstddef>
#include <cstdint>

namespace xpon::cfgdb {

/// An uplink port of the switch.
struct FrontPort {
    enum class Speed : std::uint8_t { automatic, full_100m, full_1g, full_10g }; ///< [802.3]
    enum class Direction : std::uint8_t { off, rx, tx, both };
    enum class MulticastRouter : std::uint8_t { automatic, always };

    std::uint8_t enabled; ///< administrative state
    char description[32];
    Speed speed;
    Direction flow_control;            ///< pause frames [802.3 31B]
    std::uint16_t max_frame_size;      ///< bytes
    std::uint16_t pvid;                ///< VLAN of untagged frames; 0 = they are dropped
    std::uint8_t tagged_vlans[512];    ///< VLANs carried tagged [802.1Q]
    std::uint8_t ingress_filter;       ///< frames of VLANs that are not carried are dropped
    std::uint32_t broadcast_limit_pps; ///< 0 = no limit
    MulticastRouter multicast_router;  ///< always: the way to the IGMP querier [RFC 4541]
    Direction lldp;                    ///< [802.1AB]
};

// Readers of the administrative state alone read the first byte.
static_assert(offsetof(FrontPort, enabled) == 0);

} // namespace xpon::cfgdb
