#pragma once

#include "xpon/ipc/address.hpp"

#include <array>

#include <fmt/format.h>

namespace xpon::api_service {

// An address is the service number in the upper 16 bits and the instance in the lower 16.
inline constexpr ipc::Address own_address{0x1BFFFF};

inline constexpr ipc::Address igmp_address{0x08FFFE};

/// A daemon that the service needs.
struct Peer {
    ipc::Address address;
    /// What systemd is told when the connection fails; {} is the error.
    fmt::string_view failure_status;
};

/// All peers, in the order in which they are connected.
inline constexpr std::array peers{
    Peer{{0x19FFFE}, "STATUS=Failed to connect to system-mgr: {}."},
    Peer{{0x09FFFE}, "STATUS=Failed to connect to dhcp-ra: {}."},
    Peer{{0x0AFFFE}, "STATUS=Failed to connect to pppoe: {}."},
    Peer{igmp_address, "STATUS=Failed to connect to igmp: {}."},
    Peer{{0x07FFFE}, "STATUS=Failed to connect to fsm-pon: {}."},
    Peer{{0x0CFFFE}, "STATUS=Failed to connect to bcm-custom: {}."},
    Peer{{0x06FFFE}, "STATUS=Failed to connect to dna: {}."},
    Peer{{0x13FFFE}, "STATUS=Failed to connect to ipc-broker: {}."},
};

} // namespace xpon::api_service
