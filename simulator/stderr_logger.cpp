#include "simulator/stderr_logger.hpp"

#include <cstdio>

namespace xpon::simulator {

bool StderrLogger::is_enabled(core::LogLevel level) const {
    return level >= core::LogLevel::Warning;
}

void StderrLogger::write(core::LogLevel, std::string_view text, const std::source_location&) {
    fmt::print(stderr, "olt_simulator: {}\n", text);
}

} // namespace xpon::simulator
