#pragma once

#include <source_location>
#include <string_view>
#include <type_traits>
#include <utility>

#include <fmt/format.h>

namespace xpon::core {

enum class LogLevel : int { Debug = 0, Info = 1, Notice = 2, Warning = 3, Error = 4, Fatal = 5 };

/// Where every component writes its log lines; handed to each at construction.
class ILogger {
public:
    ILogger() = default;
    ILogger(const ILogger&) = delete;
    ILogger& operator=(const ILogger&) = delete;
    virtual ~ILogger() = default;

    [[nodiscard]] virtual bool is_enabled(LogLevel level) const = 0;
    /// Writes one line. `text` is taken as it stands.
    virtual void write(LogLevel level, std::string_view text, const std::source_location& where) = 0;
};

/// A format string together with the place that logs it.
template <class... Args>
struct LogFormat {
    template <class Text>
    consteval LogFormat(const Text& text, // NOLINT(google-explicit-constructor): taken in place of a literal
                        const std::source_location& where = std::source_location::current())
        : format(text), location(where) {}

    fmt::format_string<Args...> format;
    std::source_location location;
};

/// Formats and writes one line when `level` is enabled. A line that cannot be made (no memory) is lost: logging
/// never makes an operation fail.
template <class... Args>
void log(ILogger& logger, LogLevel level, LogFormat<std::type_identity_t<Args>...> text, Args&&... args) noexcept {
    try {
        if (logger.is_enabled(level)) {
            logger.write(level, fmt::format(text.format, std::forward<Args>(args)...), text.location);
        }
    } catch (...) { // NOLINT(bugprone-empty-catch): see above
    }
}

template <class... Args>
void log_error(ILogger& logger, LogFormat<std::type_identity_t<Args>...> text, Args&&... args) noexcept {
    log(logger, LogLevel::Error, text, std::forward<Args>(args)...);
}

} // namespace xpon::core
