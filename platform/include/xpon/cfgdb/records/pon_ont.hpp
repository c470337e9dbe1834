#pragma once

#include <cstdint>

namespace xpon::cfgdb {

/// A telephone line of an ONT [G.988, ME 153].
struct OntLine {
    std::uint8_t enabled; ///< 0 or 1
    char number[24];
    char user[32];
    char secret[56]; ///< obfuscated form
};

/// The configuration of one ONT. It is configured when `serial` is not 0.
struct PonOnt {
    enum UpstreamFec : std::uint8_t { from_template, on, off };

    std::uint64_t serial; ///< vendor id and vendor's number, most significant byte first [G.984.3 9.2]
    std::uint8_t enabled; ///< 0 or 1
    char password[11];    ///< PLOAM password [G.984.3]; empty = none
    char description[64];
    std::uint8_t ont_template;       ///< number from 1; 0 = none, as in all references below
    std::uint8_t ports_profile;      ///< not 0: instead of the template's
    std::uint8_t management_profile; ///< not 0: instead of the template's
    std::uint8_t shaping_profile;    ///< not 0: instead of the template's
    UpstreamFec upstream_fec;
    char expected_equipment_id[21]; ///< [G.988, ME 257]
    OntLine lines[2];
};

} // namespace xpon::cfgdb
