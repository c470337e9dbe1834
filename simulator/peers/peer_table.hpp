#pragma once

#include "xpon/ipc/address.hpp"

#include <array>
#include <string_view>

namespace xpon::simulator {

struct PeerDescription {
    std::string_view name;
    ipc::Address address; ///< service number in the upper 16 bits, instance 0xfffe
};

/// The daemons of the OLT that the simulator plays.
inline constexpr std::array peer_table{
    PeerDescription{"system-mgr", {0x19fffe}}, PeerDescription{"dhcp-ra", {0x09fffe}},
    PeerDescription{"pppoe", {0x0afffe}},      PeerDescription{"igmp", {0x08fffe}},
    PeerDescription{"fsm-pon", {0x07fffe}},    PeerDescription{"bcm-custom", {0x0cfffe}},
    PeerDescription{"dna", {0x06fffe}},        PeerDescription{"ipc-broker", {0x13fffe}},
};

} // namespace xpon::simulator
