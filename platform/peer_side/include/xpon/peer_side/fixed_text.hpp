#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace xpon {

/// Writes a text into a field of a record, whose rest becomes zero; what does not fit is cut off.
template <std::size_t Size>
void put_text(char (&field)[Size], std::string_view text) {
    const auto length = std::min(text.size(), Size - 1);
    std::copy_n(text.data(), length, field);
    std::fill(field + length, field + Size, '\0');
}

} // namespace xpon
