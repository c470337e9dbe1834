#pragma once

#include <cstdint>

namespace xpon::simulator {

/// Whether the bitmap of a request, whose size may be anything, has the bit.
template <class Bitmap>
bool has_bit(const Bitmap& bitmap, std::uint32_t bit) {
    return bit < bitmap.size && bit < sizeof bitmap.bits * 8 && (bitmap.bits[bit / 8] >> bit % 8 & 1U) != 0;
}

} // namespace xpon::simulator
