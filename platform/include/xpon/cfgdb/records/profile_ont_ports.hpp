#pragma once

#include <cstdint>

namespace xpon::cfgdb {

/// An Ethernet port of an ONT [G.988, ME 11].
struct OntEthernetPort {
    enum class Speed : std::uint8_t { automatic, full_10m, full_100m, full_1g };

    std::uint8_t enabled;
    Speed speed;
    std::uint8_t mac_limit;     ///< 0 = no limit
    std::uint32_t ingress_kbps; ///< 0 = no limit
    std::uint32_t egress_kbps;  ///< 0 = no limit
    std::uint8_t loop_detection;
};

struct MulticastRange {
    std::uint32_t first;
    std::uint32_t last;
};

/// The user ports of an ONT.
struct ProfileOntPortsCfg {
    enum class IgmpVersion : std::uint8_t { v2, v3 };
    enum class IgmpMode : std::uint8_t { snooping, spr, proxy }; ///< spr = proxy reporting as well [ME 309, RFC 3376]
    enum class Codec : std::uint8_t { pcma, pcmu, g729, g722 };

    char name[32];
    OntEthernetPort eth[4];
    std::uint8_t veip_enabled; ///< the routed side of the ONT [ME 329]
    std::uint8_t rf_video;     ///< [ME 82]
    IgmpVersion igmp_version;
    IgmpMode igmp_mode;
    std::uint8_t immediate_leave;
    std::uint8_t max_groups;          ///< 0 = no limit [ME 310]
    std::uint32_t max_multicast_kbps; ///< 0 = no limit
    std::uint8_t multicast_ranges_count;
    MulticastRange multicast_ranges[8]; ///< groups allowed; none = all
    std::uint8_t pots[2];               ///< telephone ports enabled [ME 53]
    char sip_proxy[64];                 ///< host [ME 150]
    char sip_registrar[64];             ///< empty = the proxy
    std::uint16_t sip_port;
    std::uint32_t sip_expires_s;
    Codec codec;
};

} // namespace xpon::cfgdb
