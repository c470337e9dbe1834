#pragma once

#include <cstdint>

// Fields of `size` bits, bit n in byte n / 8 at weight 2^(n % 8). The bits of the last byte beyond the size stay 0.

extern "C" {

/// 0, or -1 with errno ERANGE for a bit beyond the size, EINVAL without bits.
int bitfield_set_bit(std::uint8_t* bits, std::uint32_t size, std::uint32_t bit);
/// Clears every bit.
void bitfield_reset(std::uint8_t* bits, std::uint32_t size);
void bitfield_invert(std::uint8_t* bits, std::uint32_t size);

} // extern "C"

/// The place of a walk over a bitmap; a walk starts with a zero one.
struct Bitmap_iterator {
    std::uint32_t next;
};
