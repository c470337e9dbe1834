#pragma once

#include "simulator/peers/peer.hpp"

#include <array>

namespace xpon::simulator {

/// What each peer answers, in the file of its name.
/// @{
std::span<const PeerRoute> system_manager_routes();
std::span<const PeerRoute> pon_state_machine_routes();
std::span<const PeerRoute> switch_chip_routes();
std::span<const PeerRoute> dna_routes();
std::span<const PeerRoute> dhcp_relay_routes();
std::span<const PeerRoute> pppoe_routes();
std::span<const PeerRoute> igmp_routes();
inline std::span<const PeerRoute> no_routes() {
    return {};
}
/// @}

/// The daemons of the OLT that the simulator plays.
inline constexpr std::array peer_table{
    PeerDescription{peer_side::peers::system_manager, "system-mgr.log", system_manager_routes},
    PeerDescription{peer_side::peers::dhcp_relay, "dhcp-ra.log", dhcp_relay_routes},
    PeerDescription{peer_side::peers::pppoe, "pppoe.log", pppoe_routes},
    PeerDescription{peer_side::peers::igmp, "igmp.log", igmp_routes},
    PeerDescription{peer_side::peers::pon_state_machine, "fsm-pon.log", pon_state_machine_routes},
    PeerDescription{peer_side::peers::switch_chip, "", switch_chip_routes},
    PeerDescription{peer_side::peers::dna, "", dna_routes},
    PeerDescription{peer_side::peers::ipc_broker, "", no_routes},
};

} // namespace xpon::simulator
