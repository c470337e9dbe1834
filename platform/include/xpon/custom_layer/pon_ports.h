#pragma once

#include "xpon/custom_layer/sfp.h"

#include <cstdint>

struct Ipc;

enum Pon_channel_state : std::uint8_t {
    pon_channel_disabled = 0,
    pon_channel_no_module = 1,
    pon_channel_starting = 2,
    pon_channel_active = 3,
    pon_channel_fault = 4,
};

enum Pon_port_type : std::uint8_t { pon_unknown = 0, pon_gpon = 1, pon_xg_pon = 2, pon_xgs_pon = 3 };

struct Pon_port_state {
    std::uint8_t port;
    Pon_channel_state channel_state;
    std::uint16_t ont_count; ///< ONTs that hold an ONU-ID
};

/// One entry for each PON port of the device, ascending by port.
struct Pon_ports_states {
    std::uint8_t count; ///< at most 16
    Pon_port_state ports[16];
};

/// The module in a PON port and, when `valid`, what it measures.
struct Pon_port_sfp_info {
    std::uint8_t port;
    Sfp_identification sfp;
    std::uint8_t valid; ///< 0 or 1
    double temperature; ///< degrees Celsius
    double voltage;     ///< V
    double bias;        ///< mA
    double power;       ///< transmitted, dBm
};

/// One entry for each PON port of the device, ascending by port.
struct Pon_ports_sfp_extended_information {
    std::uint8_t count; ///< at most 16
    Pon_port_sfp_info ports[16];
};

extern "C" {

/// Asked from the PON state machine. `*out` is a malloc block.
int custom_layer__get_pon_ports_states(Ipc* ipc, Pon_ports_states** out);

/// Asked from the switch-chip custom layer's daemon. `*out` is a malloc block.
int custom_layer__get_pon_ports_sfp_extended_information(Ipc* ipc, Pon_ports_sfp_extended_information** out);

/// Asked from the PON state machine. ERANGE for a port that the device does not have.
int custom_layer__get_pon_port_type(Ipc* ipc, std::uint8_t port, Pon_port_type* out);

/// "Unknown", "GPON", "XG-PON" or "XGS-PON"; "Unknown" for any other value.
// NOLINTNEXTLINE(readability-identifier-naming): the library's own name
const char* Pon_port_type_to_str(Pon_port_type type);
/// "DISABLED", "NO_MODULE", "STARTING", "ACTIVE" or "FAULT"; "UNKNOWN" for any other value.
const char* channel_state_to_str(Pon_channel_state state);

} // extern "C"
