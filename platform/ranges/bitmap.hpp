#pragma once

#include "xpon/ranges/bitfield.h"

#include <cerrno>
#include <cstdint>

namespace xpon::ranges {

inline int fail(int cause) {
    errno = cause;
    return -1;
}

/// Whether the bitmap is there and its size is one that it can have: it may have come from anywhere.
template <class Bitmap>
bool is_valid(const Bitmap* bitmap) {
    return bitmap != nullptr && bitmap->size <= sizeof bitmap->bits * 8;
}

template <class Bitmap>
bool has_bit(const Bitmap& bitmap, std::uint32_t bit) {
    return (bitmap.bits[bit / 8] >> bit % 8 & 1U) != 0;
}

/// An empty set of `size` bits.
template <class Bitmap>
int prepare(Bitmap* bitmap, std::uint32_t size) {
    if (bitmap == nullptr) {
        return fail(EINVAL);
    }
    *bitmap = {};
    bitmap->size = size;
    return 0;
}

/// The next set bit at or after both `iterator` and `first`; 1 when there is none left.
template <class Bitmap>
int next_bit(const Bitmap* bitmap, Bitmap_iterator* iterator, std::uint32_t first, std::uint32_t& bit) {
    if (!is_valid(bitmap) || iterator == nullptr) {
        return fail(EINVAL);
    }
    for (bit = iterator->next < first ? first : iterator->next; bit < bitmap->size; ++bit) {
        if (has_bit(*bitmap, bit)) {
            iterator->next = bit + 1;
            return 0;
        }
    }
    iterator->next = bitmap->size;
    return 1;
}

} // namespace xpon::ranges
