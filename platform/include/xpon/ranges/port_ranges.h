#pragma once

#include "xpon/ranges/bitfield.h"

#include <cstdint>

inline constexpr std::uint32_t max_uplink_ports = 16;
inline constexpr std::uint32_t max_pon_ports = 16;

/// A set of front ports: bit n is port number n. Bit 0 stands for no port, and nothing looks at it.
struct Bitmap_uplink_port_range {
    std::uint32_t size; ///< 1 + number of front ports
    std::uint8_t bits[max_uplink_ports / 8 + 1];
};

/// A set of PON ports: bit n is port number n. Bit 0 stands for no port, and nothing looks at it.
struct Bitmap_pon_port_range {
    std::uint32_t size; ///< 1 + number of PON ports
    std::uint8_t bits[max_pon_ports / 8 + 1];
};

extern "C" {

// The numbers of ports are those of the board device, 16 of either kind where there is none. All calls return 0 on
// success, and -1 with errno EINVAL for a null argument or a bitmap whose size it cannot have.

/// An empty set. `bitfield_reset` and `bitfield_invert` then make the set of all ports.
int prepare_bitmap_pon_port(Bitmap_pon_port_range* bitmap);

/// Reads a list such as "1-4,7": decimal numbers and ranges of two, joined by commas. EINVAL for anything else,
/// ERANGE for a port that the board does not have; the bitmap is empty then.
int get_parsed_uplink_port_range(const char* text, Bitmap_uplink_port_range* out);
int get_parsed_pon_port_range(const char* text, Bitmap_pon_port_range* out);

/// The next port of the set, ascending. 1, with errno as it was, when there is none left.
int get_next_bitmap_uplink_port_ids(const Bitmap_uplink_port_range* bitmap, Bitmap_iterator* iterator,
                                    std::uint8_t* port);
int get_next_bitmap_pon_port_ids(const Bitmap_pon_port_range* bitmap, Bitmap_iterator* iterator, std::uint8_t* port);

/// 1 into `value` when the port is in the set, else 0. ERANGE for a port beyond the set's size.
int get_bitmap_uplink_port_ids_value(const Bitmap_uplink_port_range* bitmap, std::uint8_t port, std::uint8_t* value);

} // extern "C"
