#pragma once

#include "xpon/custom_layer/ont_counters.h"
#include "xpon/ipc/address.hpp"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace xpon::peer_side {

/// The daemons that the device's programs ask.
namespace peers {
inline constexpr ipc::Address system_manager{0x19fffe};
inline constexpr ipc::Address dhcp_relay{0x09fffe};
inline constexpr ipc::Address pppoe{0x0afffe};
inline constexpr ipc::Address igmp{0x08fffe};
inline constexpr ipc::Address pon_state_machine{0x07fffe};
inline constexpr ipc::Address switch_chip{0x0cfffe};
inline constexpr ipc::Address dna{0x06fffe};
inline constexpr ipc::Address ipc_broker{0x13fffe};
} // namespace peers

/// What a daemon is called.
struct PeerName {
    ipc::Address peer;
    std::string_view name;
};

inline constexpr std::array peer_names{
    PeerName{peers::system_manager, "system-mgr"},
    PeerName{peers::dhcp_relay, "dhcp-ra"},
    PeerName{peers::pppoe, "pppoe"},
    PeerName{peers::igmp, "igmp"},
    PeerName{peers::pon_state_machine, "fsm-pon"},
    PeerName{peers::switch_chip, "bcm-custom"},
    PeerName{peers::dna, "dna"},
    PeerName{peers::ipc_broker, "ipc-broker"},
};

/// Empty for a daemon that is none of them.
constexpr std::string_view name_of(ipc::Address peer) {
    for (const auto& row : peer_names) {
        if (row.peer == peer) {
            return row.name;
        }
    }
    return {};
}

/// The operations that peers understand, one number space for all of them; 1 is the transport's own. The payloads of
/// requests and answers are records of the custom layer's headers, or lists of them (xpon/peer_side/payload.hpp).
enum class Operation : std::uint16_t {
    /// Notice: std::uint64_t, the number of the last commit. What it changed is in the configuration database
    /// (xpon/peer_side/running_commits.hpp); it tells a peer no more than that it is time to look.
    configuration_changed = 2,
    /// An array of service::Config_change, what a commit is about to change; nothing. EPERM refuses it; any other
    /// error, and no answer, is no objection. A peer that never refuses need not know it.
    accept_configuration = 3,

    /// Nothing; System_environment_data.
    get_environment = 16,
    /// Nothing; Bitmap_uplink_port_range.
    get_front_link_states = 17,
    /// std::uint8_t, a port; Front_port_info.
    get_front_port_info = 18,
    /// std::uint8_t, a port; Front_port_sfp_eddi.
    get_front_port_eddi = 19,
    /// Nothing; Pon_ports_sfp_extended_information.
    get_pon_modules = 20,
    /// Nothing; Pon_ports_states.
    get_pon_states = 21,
    /// std::uint8_t, a port; Pon_port_type.
    get_pon_port_type = 22,
    /// Bitmap_ont_range; list of Ont__state_info.
    get_ont_states = 23,
    /// Bitmap_pon_port_range; list of Ont_unactivated_entry.
    get_unactivated_onts = 24,
    /// Ont_information_question; std::uint32_t, for how many milliseconds the answer holds beyond this question, and a
    /// list of records of the kind: that of the ONT and no more than `ahead` of those that follow it on its port.
    get_ont_information = 25,
    /// Nothing; list of Dhcp_session.
    get_dhcp_sessions = 26,
    /// Nothing; list of Pppoe_session.
    get_pppoe_sessions = 27,
    /// Nothing; Bitmap_vlan, the VLANs with IGMP snooping.
    get_igmp_snooping_vlans = 28,
    /// Nothing; list of Igmp_group, ascending by VLAN and address.
    get_igmp_groups = 29,
    /// Nothing; list of Bcm_mac_entry.
    get_mac_table = 30,
    /// Bitmap_ont_range; list of Bcm_mac_entry.
    get_mac_table_of_onts = 31,
    /// Nothing; Snmp_environment_data.
    get_engine_id = 32,

    // What acts on the device answers nothing.

    /// std::uint32_t, when.
    reboot = 64,
    /// Nothing.
    reconfigure_olt = 65,
    /// Bitmap_pon_port_range.
    reconfigure_pon_ports = 66,
    /// Bitmap_ont_range.
    /// @{
    reconfigure_onts = 67,
    reset_onts = 68,
    reboot_onts = 69,
    /// @}
    /// The text of a path. The writing goes on after the answer.
    update_firmware = 70,
    /// Nothing. Answers EBUSY while an update writes, after a pause that lets it be asked over and over; then how the
    /// last one ended: ECANCELED when it was cut off, or there was none since the daemon's start.
    get_firmware_update_status = 71,
    /// std::uint32_t, a Firmware_selector.
    select_image = 72,
    /// Nothing. Asked before the running configuration is written to a file; an error forbids it.
    save_configuration = 73,
};

/// Which counters of which ONT, numbers from 1, and of how many behind it, which are about to be asked for.
struct Ont_information_question {
    Ont_information_kind kind;
    std::uint8_t port;
    std::uint16_t ont;
    std::uint16_t ahead = 0;
};

/// Who answers a request.
struct OperationOwner {
    Operation operation;
    ipc::Address peer;
};

inline constexpr std::array operation_owners{
    OperationOwner{Operation::get_environment, peers::system_manager},
    OperationOwner{Operation::get_front_link_states, peers::switch_chip},
    OperationOwner{Operation::get_front_port_info, peers::switch_chip},
    OperationOwner{Operation::get_front_port_eddi, peers::switch_chip},
    OperationOwner{Operation::get_pon_modules, peers::switch_chip},
    OperationOwner{Operation::get_pon_states, peers::pon_state_machine},
    OperationOwner{Operation::get_pon_port_type, peers::pon_state_machine},
    OperationOwner{Operation::get_ont_states, peers::pon_state_machine},
    OperationOwner{Operation::get_unactivated_onts, peers::pon_state_machine},
    OperationOwner{Operation::get_ont_information, peers::pon_state_machine},
    OperationOwner{Operation::get_dhcp_sessions, peers::dhcp_relay},
    OperationOwner{Operation::get_pppoe_sessions, peers::pppoe},
    OperationOwner{Operation::get_igmp_snooping_vlans, peers::igmp},
    OperationOwner{Operation::get_igmp_groups, peers::igmp},
    OperationOwner{Operation::get_mac_table, peers::switch_chip},
    OperationOwner{Operation::get_mac_table_of_onts, peers::switch_chip},
    OperationOwner{Operation::get_engine_id, peers::dna},
    OperationOwner{Operation::reboot, peers::system_manager},
    OperationOwner{Operation::reconfigure_olt, peers::system_manager},
    OperationOwner{Operation::reconfigure_pon_ports, peers::pon_state_machine},
    OperationOwner{Operation::reconfigure_onts, peers::pon_state_machine},
    OperationOwner{Operation::reset_onts, peers::pon_state_machine},
    OperationOwner{Operation::reboot_onts, peers::pon_state_machine},
    OperationOwner{Operation::update_firmware, peers::system_manager},
    OperationOwner{Operation::get_firmware_update_status, peers::system_manager},
    OperationOwner{Operation::select_image, peers::system_manager},
    OperationOwner{Operation::save_configuration, peers::dna},
};

/// Empty for an operation that every peer knows, or none.
constexpr std::optional<ipc::Address> owner_of(Operation operation) {
    for (const auto& row : operation_owners) {
        if (row.operation == operation) {
            return row.peer;
        }
    }
    return std::nullopt;
}

} // namespace xpon::peer_side
