#pragma once

#include <cstdint>

namespace xpon::simulator {

/// Whether a set of ports or ONTs, as clients of the OLT name them, holds a member.
template <class Bitmap>
bool has_bit(const Bitmap& bitmap, std::uint32_t bit) {
    return bit < bitmap.size && bit < sizeof bitmap.bits * 8 && (bitmap.bits[bit / 8] >> bit % 8 & 1U) != 0;
}

} // namespace xpon::simulator
