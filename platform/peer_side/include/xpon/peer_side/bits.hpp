#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace xpon {

/// Whether bit `bit` of a field is set: bit n stands in byte n / 8 at weight 2^(n % 8), as in all sets of ports, ONTs
/// and VLANs. False beyond the field.
constexpr bool has_bit(std::span<const std::uint8_t> bits, std::size_t bit) {
    return bit / 8 < bits.size() && (bits[bit / 8] >> bit % 8 & 1U) != 0;
}

} // namespace xpon
