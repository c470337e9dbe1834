#pragma once

#include <cstdint>

namespace xpon::cfgdb {

/// What the reset button does. Read only for clients.
struct GResetButtonMode {
    enum class Mode : std::uint8_t { disabled, reboot, factory_default };

    Mode mode;
    std::uint8_t hold_time_s;
};

} // namespace xpon::cfgdb
