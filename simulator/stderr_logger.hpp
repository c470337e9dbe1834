#pragma once

#include "xpon/core/logger.hpp"

namespace xpon::simulator {

/// Warnings and errors as "olt_simulator: TEXT" on standard error.
class StderrLogger : public core::ILogger {
public:
    [[nodiscard]] bool is_enabled(core::LogLevel level) const override;
    void write(core::LogLevel level, std::string_view text, const std::source_location& where) override;
};

} // namespace xpon::simulator
