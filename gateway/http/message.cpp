#include "gateway/http/message.hpp"

#include "gateway/daemon/message_text.hpp"

#include <algorithm>

#include <fmt/format.h>

namespace xpon::gateway {

std::string_view HttpRequest::path() const {
    return std::string_view(target).substr(0, target.find('?'));
}

std::string_view HttpRequest::query() const {
    const auto mark = target.find('?');
    return mark == std::string::npos ? std::string_view() : std::string_view(target).substr(mark + 1);
}

std::string_view HttpRequest::header(std::string_view name) const {
    const auto found =
        std::ranges::find(headers, name, [](const auto& field) { return std::string_view(field.first); });
    return found == headers.end() ? std::string_view() : std::string_view(found->second);
}

bool HttpRequest::has_several(std::string_view name) const {
    return std::ranges::count(headers, name, [](const auto& field) { return std::string_view(field.first); }) > 1;
}

HttpResponse json_response(unsigned status, std::string text) {
    return {.status = status,
            .content_type = "application/json",
            .body = std::move(text),
            .headers = {{"Cache-Control", "no-store"}}};
}

HttpResponse error_response(unsigned status, std::string_view code, std::string_view message) {
    return json_response(status, fmt::format(R"({{"error":"{}","message":{}}})", code, quoted(std::string(message))));
}

} // namespace xpon::gateway
