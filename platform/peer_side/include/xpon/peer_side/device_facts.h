#pragma once

#include "xpon/custom_layer/device.h"

#include <cstdint>
#include <string_view>

/// What the device knows of itself whether its daemons run or not. Whoever plays the device keeps it as the contents
/// of the file `device_facts_path` below OLT_ROOT, replaced as a whole with each change.
struct Device_facts {
    char magic[8]; ///< `device_facts_magic`
    Factory_info factory;
    Firmware_version_info slots[2];
    std::uint8_t running_slot;
    std::uint8_t next_boot_slot;
    /// Seconds since the device's start at the moment `written_at_ns` of CLOCK_BOOTTIME. From then on its time runs
    /// `clock_rate` times as fast as the machine's; 0: it stands still.
    double uptime_s;
    std::int64_t written_at_ns;
    double clock_rate;
};

inline constexpr std::string_view device_facts_path = "/run/device_facts";
/// Changes with the layout.
inline constexpr std::string_view device_facts_magic = "OLTFACT1";
static_assert(device_facts_magic.size() == sizeof Device_facts::magic);
