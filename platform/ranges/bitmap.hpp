#pragma once

#include "xpon/core/c_function.hpp"
#include "xpon/peer_side/bits.hpp"
#include "xpon/ranges/bitfield.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <optional>
#include <string_view>

// Steps of the functions over sets, inside their core::c_function.

namespace xpon::ranges {

/// The text of a list; EINVAL without one.
inline std::string_view required(const char* text) {
    if (text == nullptr) {
        core::fail_with(EINVAL);
    }
    return text;
}

/// EINVAL unless the set is there and its size is one that it can have: it may have come from anywhere.
template <class Bitmap>
void require_valid(const Bitmap* bitmap) {
    if (bitmap == nullptr || bitmap->size > sizeof bitmap->bits * 8) {
        core::fail_with(EINVAL);
    }
}

/// An empty set of `size` bits.
template <class Bitmap>
void prepare(Bitmap* bitmap, std::uint32_t size) {
    if (bitmap == nullptr) {
        core::fail_with(EINVAL);
    }
    *bitmap = {};
    bitmap->size = size;
}

/// The next set bit at or after both `iterator` and `first`.
template <class Bitmap>
std::optional<std::uint32_t> next_bit(const Bitmap* bitmap, Bitmap_iterator* iterator, std::uint32_t first) {
    require_valid(bitmap);
    if (iterator == nullptr) {
        core::fail_with(EINVAL);
    }
    for (auto bit = std::max(iterator->next, first); bit < bitmap->size; ++bit) {
        if (has_bit(bitmap->bits, bit)) {
            iterator->next = bit + 1;
            return bit;
        }
    }
    iterator->next = bitmap->size;
    return {};
}

/// A function that steps through a set of numbers, of which 0 is none: 0 with the next one, 1 when there is none left.
template <class Bitmap, class Number>
int next_number(const Bitmap* bitmap, Bitmap_iterator* iterator, Number* number) {
    return core::c_function([&] {
        if (number == nullptr) {
            core::fail_with(EINVAL);
        }
        *number = 0;
        const auto bit = next_bit(bitmap, iterator, 1);
        *number = static_cast<Number>(bit.value_or(0));
        return bit ? 0 : 1;
    });
}

} // namespace xpon::ranges
