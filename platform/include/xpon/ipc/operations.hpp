#pragma once

#include "xpon/ipc/address.hpp"

#include <array>
#include <cstdint>
#include <optional>

namespace xpon::ipc {

/// The daemons that the device's programs ask.
namespace peers {
inline constexpr Address system_manager{0x19fffe};
inline constexpr Address dhcp_relay{0x09fffe};
inline constexpr Address pppoe{0x0afffe};
inline constexpr Address igmp{0x08fffe};
inline constexpr Address pon_state_machine{0x07fffe};
inline constexpr Address switch_chip{0x0cfffe};
inline constexpr Address dna{0x06fffe};
inline constexpr Address ipc_broker{0x13fffe};
} // namespace peers

/// The operations that peers understand, one number space for all of them. The payloads of requests and answers are
/// records of the custom layer's headers, or lists of them (xpon/ipc/payload.hpp).
enum class Operation : std::uint16_t {
    hello = 1,
    /// Notice: an array of service::Config_change, what a commit changed in the running configuration.
    configuration_changed = 2,

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
};

/// Who answers a request.
struct OperationOwner {
    Operation operation;
    Address peer;
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
};

/// Empty for an operation that every peer knows, or none.
constexpr std::optional<Address> owner_of(Operation operation) {
    for (const auto& row : operation_owners) {
        if (row.operation == operation) {
            return row.peer;
        }
    }
    return std::nullopt;
}

} // namespace xpon::ipc
