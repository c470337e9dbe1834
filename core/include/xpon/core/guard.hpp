#pragma once

#include "xpon/core/logger.hpp"
#include "xpon/core/result.hpp"

#include <functional>
#include <string_view>
#include <type_traits>
#include <utility>

namespace xpon::core {

/// What the log says of a caught std::exception (`{}` is its what()): the text of most places, ending with a blank.
inline constexpr std::string_view exception_text = "An std::exception was thrown: {} ";
/// The text of the places that end without one: registration of routes, login and logout, the ONT index hook.
inline constexpr std::string_view exception_text_unpadded = "An std::exception was thrown: {}";

/// Logs the exception being handled and turns it into an error of code Exception that carries its what().
/// Only to be called inside a catch block. Never throws.
ErrorPayload describe_current_exception(ILogger& logger, std::string_view text,
                                        const std::source_location& where) noexcept;

/// Runs `step`, which returns a Result; an exception becomes an error of code Exception. The one place where
/// exceptions of the whole program stop.
template <class Step>
std::invoke_result_t<Step> guarded(ILogger& logger, Step&& step, std::string_view text = exception_text,
                                   const std::source_location& where = std::source_location::current()) {
    try {
        return std::invoke(std::forward<Step>(step));
    } catch (...) {
        return describe_current_exception(logger, text, where);
    }
}

} // namespace xpon::core
