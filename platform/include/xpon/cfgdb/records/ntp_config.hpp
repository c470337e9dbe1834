#pragma once

#include <cstdint>

namespace xpon::cfgdb {

struct NtpServer {
    char address[64];
    std::uint8_t version;
    std::uint8_t prefer;
};

/// Network time client [RFC 5905].
struct NtpConfig {
    enum Interface : std::uint8_t { any, inband, oob }; ///< where the servers are

    std::uint8_t enabled;
    std::uint8_t servers_count;
    NtpServer servers[4];
    std::uint8_t min_poll; ///< shortest poll interval, an exponent of 2, in seconds
    std::uint8_t max_poll; ///< longest
    Interface interface;
    std::int16_t utc_offset_min;
};

} // namespace xpon::cfgdb
