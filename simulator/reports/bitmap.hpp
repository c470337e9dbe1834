#pragma once

#include "xpon/peer_side/bits.hpp"

namespace xpon::simulator {

/// Whether a set of ports or ONTs, as clients of the OLT name them, holds a member. Bits beyond its size count for
/// nothing.
template <class Bitmap>
bool contains(const Bitmap& bitmap, std::uint32_t member) {
    return member < bitmap.size && has_bit(bitmap.bits, member);
}

} // namespace xpon::simulator
