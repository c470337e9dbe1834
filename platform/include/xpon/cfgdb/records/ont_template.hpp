#pragma once

#include <cstdint>

namespace xpon::cfgdb {

struct TemplateService {
    std::uint8_t cross_connect; ///< 0 = no service
    std::uint8_t dba;           ///< 0 = type 4 at full rate
};

/// A bundle of profiles for ONTs.
struct OntTemplate {
    char name[32];
    char description[48];
    std::uint8_t ports_profile;
    std::uint8_t management_profile;
    std::uint8_t shaping_profile;
    std::uint8_t upstream_fec;
    TemplateService services[8];
};

} // namespace xpon::cfgdb
