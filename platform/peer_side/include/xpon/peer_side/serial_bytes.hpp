#pragma once

#include <array>
#include <cstdint>

namespace xpon {

/// A serial number as records and clients carry it: the four letters of the vendor and four bytes of its own [ITU-T
/// G.984.3], most significant byte of `serial` first, and two bytes that are always 0.
constexpr std::array<std::uint8_t, 10> serial_bytes(std::uint64_t serial) {
    std::array<std::uint8_t, 10> bytes{};
    for (auto byte = sizeof serial; byte-- > 0; serial >>= 8U) {
        bytes[byte] = static_cast<std::uint8_t>(serial);
    }
    return bytes;
}

} // namespace xpon
