#pragma once

#include <cstdint>

namespace xpon::cfgdb {

/// Profile numbers from 1; 0 = none, like every reference below.
struct TemplateService {
    std::uint8_t cross_connect; ///< none: no service
    std::uint8_t dba;           ///< none: type 4 at full rate
};

/// A bundle of profiles.
struct OntTemplate {
    char name[32];
    char description[48];
    std::uint8_t ports_profile;
    std::uint8_t management_profile;
    std::uint8_t shaping_profile;
    std::uint8_t upstream_fec; ///< 0 or 1
    TemplateService services[8];
};

} // namespace xpon::cfgdb
