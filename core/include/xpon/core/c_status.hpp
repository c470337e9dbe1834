#pragma once

#include "xpon/core/logger.hpp"
#include "xpon/core/result.hpp"

#include <cerrno>
#include <functional>
#include <source_location>
#include <utility>

namespace xpon::core {

/// Turns the status of a C library call into a Result: 0 is success, anything else an error of code ErrorCApi with
/// the status and, when it is set, errno. The error is logged and errno is cleared.
Result<void> check_c_status(ILogger& logger, int status,
                            const std::source_location& where = std::source_location::current());

/// Runs `call`, which returns a C status, with errno cleared beforehand, and checks the status.
template <class Call>
Result<void> call_c_api(ILogger& logger, Call&& call,
                        const std::source_location& where = std::source_location::current()) {
    errno = 0;
    return check_c_status(logger, std::invoke(std::forward<Call>(call)), where);
}

} // namespace xpon::core
