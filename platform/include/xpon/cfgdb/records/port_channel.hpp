#pragma once

#include <cstdint>

namespace xpon::cfgdb {

/// A link aggregation of front ports [802.1AX]. VLANs, speed and frame size are those of its members.
struct PortChannel {
    enum class Mode : std::uint8_t { fixed, lacp_active, lacp_passive };
    enum class LacpTimeout : std::uint8_t { slow, fast }; ///< 90 s and 3 s
    enum class Hash : std::uint8_t { src_dst_mac, src_dst_ip, src_dst_ip_port };

    std::uint8_t enabled;
    char description[32];
    std::uint32_t members; ///< front ports
    Mode mode;
    LacpTimeout lacp_timeout;
    Hash hash;
    std::uint8_t min_links; ///< fewer working members put the channel down
};

} // namespace xpon::cfgdb
