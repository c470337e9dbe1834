#pragma once

#include <cstdint>

namespace xpon::cfgdb {

/// How an ONT is managed [G.988 ME 134, 340; TR-069].
struct ProfileOntManagementCfg {
    enum class Mode : std::uint8_t { omci, tr069 };

    char name[32];
    Mode mode;
    std::uint8_t acs_from_dhcp; ///< the ACS address comes with option 43 of DHCP
    char acs_url[96];
    char acs_user[32];
    char acs_secret[56];
    std::uint32_t inform_interval_s;
    std::uint8_t web_lan; ///< access to the ONT itself from the subscriber's side
    std::uint8_t web_wan; ///< access to the ONT itself from the network
    std::uint8_t ssh_wan;
    std::uint8_t ping_wan;
    char admin_secret[56];      ///< the ONT's local administrator; empty = unchanged
    std::uint16_t mib_audit_s;  ///< 0 = never
    std::uint8_t pm_collection; ///< 15-minute counters are collected
};

} // namespace xpon::cfgdb
