#include "xpon/core/error_payload.hpp"

#include <cassert>
#include <ostream>
#include <utility>

#include <fmt/format.h>

namespace xpon::core {

ErrorPayload::ErrorPayload(const Error& error, const std::source_location& where)
    : code(error), info(ErrorInfo{.message = {}, .location = where}) {}

ErrorPayload::ErrorPayload(const Error& error, std::string message, const std::source_location& where)
    : code(error), info(ErrorInfo{.message = std::move(message), .location = where}) {}

std::string ErrorPayload::to_string() const {
    auto text = fmt::format("Error: {}", core::to_string(code));
    if (!info || info->message.empty()) {
        return text;
    }
    return fmt::format("{}. Message: {}.", text, info->message);
}

std::ostream& operator<<(std::ostream& out, const ErrorPayload& payload) {
    assert(payload.info.has_value());
    const auto& [message, location] = *payload.info;
    return out << fmt::format("[{}]: {} ({}:{}): {}", to_string(payload.code), message, location.file_name(),
                              location.line(), location.function_name());
}

} // namespace xpon::core
