#pragma once

#include "xpon/ranges/bitfield.h"

#include <cstdint>

inline constexpr std::uint16_t max_vlan_id = 4094;

/// A set of VLANs: bit n is VLAN id n. Bits 0 and 4095 stand for no VLAN [802.1Q], and nothing looks at them.
struct Bitmap_vlan {
    std::uint32_t size; ///< 1 + max_vlan_id
    std::uint8_t bits[(max_vlan_id + 1) / 8 + 1];
};

extern "C" {

// Returns and errno as for the sets of ports.

/// An empty set. `bitfield_reset` and `bitfield_invert` then make the set of all VLANs.
int prepare_bitmap_vlan(Bitmap_vlan* bitmap);

/// The next VLAN id of the set, ascending. 1, with errno as it was, when there is none left.
int get_next_bitmap_vlan_ids(const Bitmap_vlan* bitmap, Bitmap_iterator* iterator, std::uint16_t* vlan);

} // extern "C"
