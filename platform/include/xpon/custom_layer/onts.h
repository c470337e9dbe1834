#pragma once

#include "xpon/ranges/ont_range.h"
#include "xpon/ranges/port_ranges.h"

#include <cstddef>
#include <cstdint>

struct Ipc;

namespace xpon::cfgdb {
struct PonOnt;
} // namespace xpon::cfgdb

/// Bytes of a serial number: the 8 of [G.984.3 9.2], vendor id first, and two zero bytes.
inline constexpr std::size_t ont_serial_bin_size = 10;

/// Where an ONT is on its way into service [G.984.3 clause 10; O1 to O7 are its states].
enum Ont_state : std::uint8_t {
    ont_initial = 1,        ///< O1
    ont_standby = 2,        ///< O2
    ont_serial_number = 3,  ///< O3
    ont_ranging = 4,        ///< O4
    ont_authentication = 5, ///< O5, as the next five
    ont_mib_upload = 6,
    ont_configuring = 7,
    ont_operational = 8,
    ont_auth_failed = 9,
    ont_config_failed = 10,
    ont_popup = 11,          ///< O6
    ont_emergency_stop = 12, ///< O7
    ont_disabled = 13,       ///< O7
};

/// An ONT that is activated, or on its way there.
struct Ont__state_info {
    std::uint8_t serial[ont_serial_bin_size];
    std::uint8_t port;    ///< where it is seen, which is where it is configured
    std::uint16_t ont_id; ///< its configured number on the port
    Ont_state state;
    char equipment_id[21];            ///< [G.988 ME 257]
    char hardware_version[15];        ///< [G.988 ME 256]
    char software_version[15];        ///< [G.988 ME 7]
    std::uint32_t equalization_delay; ///< bit times of 1.24416 Gbit/s [G.984.3]
    std::uint8_t fec_state;           ///< 0 or 1, upstream
    std::uint32_t distance;           ///< m
    double rssi;                      ///< dBm at the OLT, one decimal
    std::uint8_t alloc_count;         ///< valid elements of `alloc_ids`, at most 9
    std::uint16_t alloc_ids[9];       ///< the first is the one for OMCI
};

/// Activated ONTs that running configures and that the asked range holds, ascending by configured (port, ONT).
struct Ont__get_state_info_response {
    std::uint32_t count;
    Ont__state_info* entries; ///< `count` of them, in the same block
};

/// An ONT that is seen but not configured where it is seen.
struct Ont_unactivated_entry {
    std::uint8_t port;
    std::uint8_t serial[ont_serial_bin_size];
    char password[11]; ///< PLOAM password
};

/// Ascending by port, then serial.
struct Ont_unactivated_info {
    std::uint32_t count;
    Ont_unactivated_entry* entries; ///< `count` of them, in the same block
};

extern "C" {

// Both are asked from the PON state machine. `*out` is one malloc block with its entries.

int custom_layer__get_ont_state_info_by_range(Ipc* ipc, const Bitmap_ont_range* range,
                                              Ont__get_state_info_response** out);
int custom_layer__get_ont_unactivated_by_range(Ipc* ipc, const Bitmap_pon_port_range* range,
                                               Ont_unactivated_info** out);

/// Whether the record is that of a configured ONT: 1 or 0. "Unsafe": neither locks nor looks into the database.
int custom_layer__is_ont_configured_unsafe(const xpon::cfgdb::PonOnt* record);

/// "INITIAL", "OPERATIONAL" and so on; "UNKNOWN" for a value that is none.
const char* ont_state_to_str(Ont_state state);

/// Writes the `ont_serial_bin_size` bytes of a serial number as the configuration stores it.
void unsigned_long_serial_to_bin(std::uint64_t serial, std::uint8_t* serial_bin);

/// The database index of an ONT's configuration. Port and ONT are the 0-based positions of a Bitmap_ont_range, not
/// the client's numbers. 65535, which the database refuses, for an ONT that there cannot be.
unsigned short get_ont_config_index(unsigned port, unsigned ont);

} // extern "C"
