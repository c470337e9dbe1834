#include "api_service/change_record.hpp"

#include "api_service/protocol/strings.hpp"
#include "xpon/core/printable_text.hpp"

#include <algorithm>
#include <array>
#include <string_view>

#include <fmt/format.h>

namespace xpon::api_service {
namespace {

constexpr std::array<std::string_view, 4> changing_methods{"auth", "set", "delete", "command"};

/// Well-formed indices as they are; others are anybody's text.
std::string indices_text(const std::string& indices) {
    const bool well_formed = indices.find_first_not_of("0123456789-,/ ") == std::string::npos;
    return well_formed ? core::printable_text(indices, 128) : core::quoted_text(indices);
}

std::string subject_of(const Request& request) {
    auto subject = fmt::format("{} {}", request.method, request.path); // those of a route
    if (!request.indices.empty()) {
        subject += fmt::format(" [{}]", indices_text(join_strings(request.indices, " ")));
    }
    if (const char* user = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(request.data.get(), "user"));
        user != nullptr && request.method == "auth") {
        subject += fmt::format(" user {}", core::quoted_text(user));
    }
    return subject;
}

} // namespace

ChangeRecord::ChangeRecord(const Request& request)
    : is_change(std::ranges::count(changing_methods, request.method) != 0) {
    if (is_change) {
        is_login = request.path == "auth";
        session_id = request.session_id.value_or("");
        subject = subject_of(request);
    }
}

} // namespace xpon::api_service
