#pragma once

#include <cstdint>

namespace xpon::cfgdb {

/// One service of one ONT.
struct OntServices {
    enum Mode : std::uint8_t { from_template, custom, off };

    Mode mode;                  ///< whose profiles: those of the service of the same number in the template, or these
    std::uint8_t cross_connect; ///< in mode custom; 0 = no service
    std::uint8_t dba;           ///< in mode custom; 0 = type 4 at full rate
    std::uint16_t s_vid;        ///< not 0: instead of the profile's
    std::uint16_t c_vid;        ///< not 0: instead of the profile's
    std::uint8_t mac_limit;     ///< not 0: instead of the profile's
    std::uint32_t downstream_kbps; ///< 0 = no limit
    std::uint32_t upstream_kbps;   ///< 0 = no limit
    std::uint32_t static_ip;       ///< the subscriber's fixed address, for source_guard
    char subscriber_id[32];        ///< line id that the agents insert
};

} // namespace xpon::cfgdb
