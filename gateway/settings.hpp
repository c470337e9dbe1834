#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace xpon::gateway {

/// What can be set in olt_console.conf, where each is explained; the initial values are the defaults.
struct Settings {
    // Where browsers come.
    std::string listen = "127.0.0.1"; ///< an IPv4 or IPv6 address of this machine
    std::uint16_t port = 8080;
    std::string certificate = {};             ///< PEM file; with `key`: HTTPS
    std::string key = {};                     ///< PEM file
    bool plain_http_everywhere = false;       ///< plain HTTP on an address other than a loopback one
    std::vector<std::string> host_names = {}; ///< what browsers may call this machine; empty: see is_known_host()
    std::string pages = "/usr/share/olt-console/www";
    std::string access_log = {}; ///< file; empty: standard output

    // The daemon.
    std::uint16_t service_port = 9999; ///< on 127.0.0.1
    std::chrono::seconds request_timeout{20};
    std::chrono::seconds longest_request_timeout{600}; ///< what a page may ask for with `Prefer: wait=`

    // Sessions.
    std::chrono::seconds idle_timeout{900};
    std::chrono::seconds absolute_timeout{43200};
    std::size_t sessions_per_user = 8;
    std::size_t sessions = 256;

    // Limits.
    std::size_t body_bytes = 1048576;
    double requests_per_second = 50; ///< of one session
    double request_burst = 200;
    std::size_t waiting_requests = 32; ///< of one session
    std::size_t connections = 2048;
    std::size_t streams_per_session = 8;
    std::size_t watches_per_stream = 32;
    std::chrono::milliseconds shortest_interval{500};
};

} // namespace xpon::gateway
