#pragma once

#include "xpon/ranges/bitfield.h"
#include "xpon/ranges/port_ranges.h"

#include <cstdint>

inline constexpr std::uint32_t max_onts_per_pon_port = 256;
inline constexpr std::uint32_t max_configured_onts = max_pon_ports * max_onts_per_pon_port;

/// A set of ONTs by configured place. Unlike the sets of ports it counts from 0: bit (port - 1) * 256 + (ont - 1).
struct Bitmap_ont_range {
    std::uint32_t size; ///< 256 * number of PON ports
    std::uint8_t bits[max_configured_onts / 8];
};

extern "C" {

// Returns and errno as for the sets of ports.

/// An empty set. `bitfield_reset` and `bitfield_invert` then make the set of all ONTs.
int prepare_bitmap_ont(Bitmap_ont_range* bitmap);

/// The next ONT of the set, ascending by port, then ONT; both are 0-based positions. 1, with errno as it was, when
/// there is none left.
int get_next_bitmap_ont_ids(const Bitmap_ont_range* bitmap, Bitmap_iterator* iterator, std::uint8_t* port,
                            std::uint16_t* ont);

} // extern "C"

/// Reads two lists such as "1-2" and "1-8,12", numbers from 1 as the client counts. EINVAL for bad syntax, ERANGE for
/// a port that the board does not have or an ONT above 256; the bitmap is empty then.
int get_parsed_ont_range(const char* ports, const char* onts, Bitmap_ont_range* out);
/// The same from one text, "PORTS/ONTS", or "PORTS" for all ONTs of the ports.
int get_parsed_ont_range(const char* ports_and_onts, Bitmap_ont_range* out);
