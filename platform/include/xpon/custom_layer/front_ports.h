#pragma once

#include "xpon/custom_layer/sfp.h"
#include "xpon/ranges/port_ranges.h"

#include <cstdint>

struct Ipc;

struct Front_port_info {
    char speed[16]; ///< "10G", "1G" or "100M"; "none" without link
    Sfp_identification sfp;
    char media[24]; ///< "10GBASE-LR", "1000BASE-T"; empty unless a module is present
};

/// What the module in a front port measures [SFF-8472].
struct Front_port_sfp_eddi {
    double temperature; ///< degrees Celsius
    double voltage;     ///< V
    double bias;        ///< mA
    double power;       ///< transmitted, mW
};

extern "C" {

// Asked from the switch-chip custom layer's daemon. ERANGE for a port that the device does not have.

/// Which front ports have link. Ports that are administratively down have none.
int custom_layer__get_front_ports_link_states(Ipc* ipc, Bitmap_uplink_port_range* link_up);

int custom_layer__get_front_port_info(Ipc* ipc, std::uint8_t port, Front_port_info* out);

/// ENODATA for a module without diagnostics, and without a module.
int custom_layer__get_front_port_sfp_eddi(Ipc* ipc, std::uint8_t port, Front_port_sfp_eddi* out);

} // extern "C"
