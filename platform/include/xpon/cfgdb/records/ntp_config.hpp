#pragma once

#include <cstdint>

namespace xpon::cfgdb {

struct NtpServer {
    char address[64]; ///< host name or dotted IPv4 address
    std::uint8_t version;
    std::uint8_t prefer; ///< 0 or 1
};

/// Network time client [RFC 5905].
struct NtpConfig {
    enum Interface : std::uint8_t { any, inband, oob };

    std::uint8_t enabled; ///< 0 or 1
    std::uint8_t servers_count;
    NtpServer servers[4];
    std::uint8_t min_poll; ///< poll intervals as exponents of 2, in seconds
    std::uint8_t max_poll;
    Interface interface;
    std::int16_t utc_offset_min;
};

} // namespace xpon::cfgdb
