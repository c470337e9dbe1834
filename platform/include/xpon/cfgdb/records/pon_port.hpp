#pragma once

#include <cstdint>

namespace xpon::cfgdb {

/// A PON port.
struct PonPort {
    enum class OdnClass : std::uint8_t { a, b, b_plus, c, c_plus };        ///< optical budget [G.984.2]
    enum class OnuAuth : std::uint8_t { serial, serial_password };         ///< what must match [G.984.3]
    enum class DbaReporting : std::uint8_t { status, traffic_monitoring }; ///< [G.984.3 7.4]

    std::uint8_t enabled; ///< laser on
    char description[32];
    OdnClass odn_class;
    std::uint8_t reach_min_km; ///< ranging window [G.984.3]
    std::uint8_t reach_max_km;
    std::uint8_t discovery_interval_s; ///< between serial-number windows
    std::uint16_t key_interval_s;      ///< between exchanges of the AES key
    std::uint16_t ont_limit;           ///< enabled ONTs allowed
    OnuAuth onu_auth;
    std::uint8_t downstream_fec;
    std::uint8_t rogue_detection;
    DbaReporting dba_reporting;
};

} // namespace xpon::cfgdb
