#pragma once

#include "xpon/custom_layer/device.h"

#include <array>
#include <cstdint>

namespace xpon::simulator {

/// What the OLT's slots hold, and which of them runs.
struct FirmwareSlots {
    std::array<Firmware_version_info, 2> slots{}; ///< all zero: no valid image
    std::uint8_t running = 0;
    std::uint8_t chosen = 0; ///< for the next boot

    [[nodiscard]] bool is_valid(unsigned slot) const {
        return slots.at(slot).valid != 0;
    }
    /// The slot that runs after the next boot: the chosen one, unless only the other can.
    [[nodiscard]] std::uint8_t next_boot() const {
        const auto other = static_cast<std::uint8_t>(1 - chosen);
        return !is_valid(chosen) && is_valid(other) ? other : chosen;
    }
};

} // namespace xpon::simulator
