#pragma once

#include "xpon/core/logger.hpp"

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace xpon::test {

/// Keeps every line, so that a test can ask what was logged. Any thread may write.
class RecordingLogger : public core::ILogger {
public:
    struct Line {
        core::LogLevel level;
        std::string text;
    };

    [[nodiscard]] bool is_enabled(core::LogLevel level) const override;
    void write(core::LogLevel level, std::string_view text, const std::source_location& where) override;

    [[nodiscard]] std::vector<std::string> texts() const;
    [[nodiscard]] bool contains(std::string_view text) const;
    void clear();

    core::LogLevel least_level = core::LogLevel::Debug;

    std::vector<Line> lines; ///< to be looked at when nobody writes any more

private:
    mutable std::mutex mutex_;
};

} // namespace xpon::test
