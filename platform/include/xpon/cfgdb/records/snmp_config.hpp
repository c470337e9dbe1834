#pragma once

#include <cstdint>

namespace xpon::cfgdb {

enum class SnmpAccess : std::uint8_t { read, read_write };

struct SnmpCommunity {
    char name[32];
    SnmpAccess access;
    std::uint32_t source;
    std::uint8_t source_prefix; ///< 0 = from anywhere
};

/// A user of the user-based security model [RFC 3414].
struct SnmpUser {
    enum class SecurityLevel : std::uint8_t { no_auth_no_priv, auth_no_priv, auth_priv };
    enum class AuthProtocol : std::uint8_t { md5, sha1, sha256 }; ///< [RFC 3414, 7860]
    enum class PrivProtocol : std::uint8_t { des, aes128 };       ///< [RFC 3414, 3826]

    char name[32];
    SecurityLevel security_level;
    AuthProtocol auth_protocol;
    char auth_secret[56];
    PrivProtocol priv_protocol;
    char priv_secret[56];
    SnmpAccess access;
};

struct SnmpTrapTarget {
    enum class Version : std::uint8_t { v1, v2c, v3 };

    std::uint32_t address;
    std::uint16_t port;
    Version version;
    char name[32]; ///< a community, or with v3 a user of the list
    std::uint8_t inform;
};

/// The SNMP agent [RFC 3411].
struct GSysSnmpCfg {
    std::uint8_t enabled;
    std::uint16_t port;
    std::uint8_t v2c_enabled;
    std::uint8_t v3_enabled;
    char engine_id[65]; ///< empty = the board's own
    char sys_contact[64];
    char sys_location[64];
    std::uint8_t communities_count;
    SnmpCommunity communities[4];
    std::uint8_t users_count;
    SnmpUser users[8];
    std::uint8_t trap_targets_count;
    SnmpTrapTarget trap_targets[4];
    std::uint8_t trap_link; ///< groups of notifications
    std::uint8_t trap_ont;
    std::uint8_t trap_environment;
    std::uint8_t trap_config;
};

} // namespace xpon::cfgdb
