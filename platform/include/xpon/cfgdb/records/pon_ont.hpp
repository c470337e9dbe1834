#pragma once

#include <cstdint>

namespace xpon::cfgdb {

/// A telephone line of an ONT [G.988, ME 153].
struct OntLine {
    std::uint8_t enabled;
    char number[24];
    char user[32];
    char secret[56];
};

/// The configuration of one ONT. It is configured when `serial` is not 0.
struct PonOnt {
    enum UpstreamFec : std::uint8_t { from_template, on, off };

    std::uint64_t serial; ///< vendor id and vendor's number, most significant byte first [G.984.3 9.2]
    std::uint8_t enabled; ///< false: kept from service
    char password[11];    ///< PLOAM password [G.984.3]; empty = none
    char description[64];
    std::uint8_t ont_template;       ///< 0 = none
    std::uint8_t ports_profile;      ///< not 0: instead of the template's
    std::uint8_t management_profile; ///< not 0: instead of the template's
    std::uint8_t shaping_profile;    ///< not 0: instead of the template's
    UpstreamFec upstream_fec;        ///< without a template `template` means on
    char expected_equipment_id[21];  ///< [G.988, ME 257]
    OntLine lines[2];
};

} // namespace xpon::cfgdb
