#pragma once

#include "xpon/core/logger.hpp"
#include "xpon/core/result.hpp"

#include <cerrno>
#include <functional>
#include <source_location>
#include <utility>

namespace xpon::core {

/// A logger together with the place that hands it over.
struct LoggerAt {
    LoggerAt(ILogger& log_of_caller, // NOLINT(google-explicit-constructor): taken in place of the logger
             const std::source_location& where = std::source_location::current())
        : logger(log_of_caller), location(where) {}

    ILogger& logger;
    std::source_location location;
};

/// Turns the status of a C library call into a Result: 0 is success, anything else an error of code ErrorCApi with
/// the status and, when it is set, errno. The error is logged and errno is cleared.
Result<void> check_c_status(LoggerAt log, int status);

/// Calls `function`, which returns a C status, with errno cleared beforehand, and checks the status.
template <class Function, class... Args>
Result<void> call_c_api(LoggerAt log, Function&& function, Args&&... args) {
    errno = 0;
    return check_c_status(log, std::invoke(std::forward<Function>(function), std::forward<Args>(args)...));
}

} // namespace xpon::core
