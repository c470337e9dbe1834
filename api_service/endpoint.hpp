#pragma once

#include <cstdint>
#include <string>
#include <variant>

namespace xpon::api_service {

/// A TCP port of the loopback address.
struct IpEndpoint {
    std::uint16_t port;
};

/// A Unix-domain stream socket; a path longer than 107 bytes is cut.
struct UnixEndpoint {
    std::string path;
};

/// Where to listen.
using Endpoint = std::variant<IpEndpoint, UnixEndpoint>;

} // namespace xpon::api_service
