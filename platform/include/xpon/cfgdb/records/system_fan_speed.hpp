#pragma once

#include <cstdint>

namespace xpon::cfgdb {

/// Fan control. Read only for clients.
struct GSystemFanSpeed {
    enum class Mode : std::uint8_t { automatic, manual };

    Mode mode;
    std::uint8_t manual_percent;
    std::uint8_t min_percent;
    std::int8_t target_temp_c;
    std::int8_t alarm_temp_c;
};

} // namespace xpon::cfgdb
