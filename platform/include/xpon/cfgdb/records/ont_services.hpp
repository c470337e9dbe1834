#pragma once

#include <cstdint>

namespace xpon::cfgdb {

/// One service of one ONT.
struct OntServices {
    enum Mode : std::uint8_t { from_template, custom, off };

    Mode mode;
    std::uint8_t cross_connect; ///< profile numbers, used in mode custom
    std::uint8_t dba;
    std::uint16_t s_vid; ///< not 0: instead of the profile's, as c_vid and mac_limit
    std::uint16_t c_vid;
    std::uint8_t mac_limit;
    std::uint32_t downstream_kbps; ///< 0 = no limit
    std::uint32_t upstream_kbps;
    std::uint32_t static_ip; ///< first octet most significant; 0 = none
    char subscriber_id[32];
};

} // namespace xpon::cfgdb
