#pragma once

#include "xpon/custom_layer/onts.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace xpon::simulator {

/// Writes a serial number into a field of a record, most significant byte first.
inline void put_serial(std::uint8_t (&field)[ont_serial_bin_size], std::uint64_t serial) {
    std::memset(field, 0, sizeof field);
    for (std::size_t byte = sizeof serial; byte-- > 0; serial >>= 8U) {
        field[byte] = static_cast<std::uint8_t>(serial);
    }
}

} // namespace xpon::simulator
