#include "api_service/change_record.hpp"

#include "api_service/protocol/strings.hpp"

#include <algorithm>
#include <array>

namespace xpon::api_service {
namespace {

constexpr std::array<std::string_view, 4> changing_methods{"auth", "set", "delete", "command"};

std::string subject_of(const Request& request) {
    auto subject = fmt::format("{} {}", request.method, request.path);
    if (!request.indices.empty()) {
        subject += fmt::format(" [{}]", join_strings(request.indices, " "));
    }
    if (const char* user = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(request.data.get(), "user"));
        user != nullptr && request.method == "auth") {
        subject += fmt::format(" user {}", user);
    }
    return subject;
}

} // namespace

ChangeRecord::ChangeRecord(const Request& request)
    : is_change_(std::ranges::count(changing_methods, request.method) != 0) {
    if (is_change_) {
        session_id_ = request.session_id.value_or("");
        subject_ = subject_of(request);
    }
}

void ChangeRecord::report(ILogger& logger, std::string_view outcome) const {
    write(logger, session_id_, outcome);
}

void ChangeRecord::report(ILogger& logger, const Result<Response>& response) const {
    if (!response) {
        write(logger, session_id_, "failed");
    } else {
        const bool done = response.value().success && response.value().errors.empty();
        write(logger, response.value().session_id, done ? "done" : "refused");
    }
}

void ChangeRecord::write(ILogger& logger, std::string_view session_id, std::string_view outcome) const {
    if (is_change_) {
        core::log(logger, core::LogLevel::Notice, "Session {}: {}: {}", session_id.empty() ? "none" : session_id,
                  subject_, outcome);
    }
}

} // namespace xpon::api_service
