#pragma once

#include "xpon/core/error.hpp"

#include <iosfwd>
#include <optional>
#include <source_location>
#include <string>

namespace xpon::core {

/// The error side of every Result: a code and, mostly, a message and the place where the error was made.
struct ErrorPayload {
    struct ErrorInfo {
        std::string message;
        /// A default-made location stands for "unknown": empty names, line 0.
        std::source_location location;
    };

    ErrorPayload(const Error& error, // NOLINT(google-explicit-constructor): lets `return Error::Empty;` work
                 const std::source_location& where = std::source_location::current());
    ErrorPayload(const Error& error, std::string message,
                 const std::source_location& where = std::source_location::current());

    /// "Error: NAME", and the message behind it when there is one.
    [[nodiscard]] std::string to_string() const;

    Error code;
    std::optional<ErrorInfo> info;
};

/// "[NAME]: MESSAGE (FILE:LINE): FUNCTION". The payload must carry info.
std::ostream& operator<<(std::ostream& out, const ErrorPayload& payload);

} // namespace xpon::core
