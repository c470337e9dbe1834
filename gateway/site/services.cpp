#include "gateway/site/services.hpp"

#include "gateway/daemon/message_text.hpp"
#include "gateway/daemon/trouble.hpp"
#include "gateway/http/request_rules.hpp"
#include "xpon/client/message.hpp"

#include <fmt/format.h>

namespace xpon::gateway {

Caller caller_of(const HttpRequest& request, const Services& services) {
    const auto id = session_id_of(request, services.settings);
    auto session = services.sessions.find(id, Clock::now());
    if (!session) {
        return {.session = nullptr, .refusal = no_session(request, services.sessions.why_ended(id), services.settings)};
    }
    // Once the daemon is back it counts sessions from 1 again.
    return {.session = std::move(session), .refusal = {}};
}

HttpResponse no_session(const HttpRequest& request, std::optional<SessionEnd> why, const Settings& settings) {
    const auto reason = why ? fmt::format("\"{}\"", to_string(*why)) : "null";
    auto response =
        json_response(401, fmt::format(R"({{"error":"no_session","message":"Log in first.","reason":{}}})", reason));
    const auto name = cookie_name(settings, request.is_secure);
    if (!why && !cookie(request, name).empty()) {
        response.headers.emplace_back("Set-Cookie", no_session_cookie(name, request.is_secure));
    }
    return response;
}

std::string session_id_of(const HttpRequest& request, const Settings& settings) {
    return std::string(cookie(request, cookie_name(settings, request.is_secure)));
}

std::string describe(const Session& session, const Services& services) {
    const auto left = services.sessions.time_left(session, Clock::now());
    return fmt::format(
        R"({{"user":{},"privilege":{},"idle_left_s":{},"left_s":{},"idle_timeout_s":{},"absolute_timeout_s":{}}})",
        quoted(session.api.user), quoted(session.api.privilege), left.idle.count(), left.absolute.count(),
        services.settings.idle_timeout.count(), services.settings.absolute_timeout.count());
}

void end_in_daemon(const ApiSession& session, const Services& services) {
    auto text = client::print_request({.path = "unauth", .method = "auth"}, session.id);
    if (text) {
        services.daemon.ask({.text = std::move(text).value(),
                             .deadline = Clock::now() + services.settings.request_timeout,
                             .incarnation = session.incarnation,
                             .background = false,
                             .done = [](const Reply&) {}});
    }
}

HttpResponse trouble_response(Trouble trouble) {
    const auto& facts = facts_of(trouble);
    return error_response(facts.status, facts.code, facts.message);
}

} // namespace xpon::gateway
