#include "gateway/site/session_endpoints.hpp"

#include "gateway/daemon/message_text.hpp"
#include "gateway/http/request_rules.hpp"
#include "xpon/client/message.hpp"

#include <utility>

#include <fmt/format.h>

namespace xpon::gateway {
namespace {

constexpr std::size_t longest_credential = 256; ///< bytes
// Each login holds the daemon's one thread for as long as PAM takes.
constexpr std::size_t most_logins_under_way = 8;

HttpResponse too_many_attempts(std::chrono::seconds wait) {
    auto response = json_response(429, fmt::format(R"({{"error":"too_many_attempts","message":"Too many attempts. )"
                                                   R"(Try again in {0} s.","retry_after_s":{0}}})",
                                                   wait.count()));
    response.headers.emplace_back("Retry-After", std::to_string(wait.count()));
    return response;
}

std::string text_member(const cJSON* object, const char* key) {
    const char* text = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(object, key));
    return text == nullptr ? "" : text;
}

HttpResponse login_refused(const client::Answer& answer) {
    const auto& errors = answer.errors;
    const auto reason = errors.empty() || errors.front().params.empty() ? "" : errors.front().params.front();
    return json_response(401, fmt::format(R"({{"error":"login_refused","message":{},"reason":{}}})",
                                          quoted(errors.empty() ? "Login refused" : errors.front().message()),
                                          quoted(reason)));
}

} // namespace

void SessionEndpoints::log_in(const HttpRequest& request, const Respond& respond) {
    const core::JsonTree tree(cJSON_ParseWithLength(request.body.data(), request.body.size()));
    const auto user = text_member(tree.get(), "user");
    const auto password = text_member(tree.get(), "password");
    if (user.empty() || password.empty() || user.size() > longest_credential || password.size() > longest_credential) {
        respond(error_response(
            400, "bad_request",
            fmt::format("A login is {{\"user\": .., \"password\": ..}}, texts of 1 to {} bytes", longest_credential)));
        return;
    }
    if (logins_under_way_ >= most_logins_under_way) {
        respond(too_many_attempts(std::chrono::seconds(1)));
        return;
    }
    if (!services_.sessions.has_room_for(user)) {
        respond(error_response(503, "too_many_sessions", "There are as many sessions as are allowed."));
        return;
    }
    if (const auto wait = throttle_.begin(request.peer, user, Clock::now()); wait.count() > 0) {
        respond(too_many_attempts(wait));
        return;
    }
    core::JsonTree credentials(cJSON_CreateObject());
    cJSON_AddStringToObject(credentials.get(), "user", user.c_str());
    cJSON_AddStringToObject(credentials.get(), "password", password.c_str());
    auto text = client::print_request({.path = "auth", .method = "auth", .data = std::move(credentials)}, "");
    ++logins_under_way_;
    services_.daemon.ask({.text = text ? std::move(text).value() : "",
                          .deadline = Clock::now() + services_.settings.request_timeout,
                          .incarnation = 0,
                          .background = false,
                          .done = [this, request, user, respond](const Reply& reply) {
                              --logins_under_way_;
                              finish_login(request, user, reply, respond);
                          }});
}

void SessionEndpoints::finish_login(const HttpRequest& request, const std::string& user, const Reply& reply,
                                    const Respond& respond) {
    using Outcome = LoginThrottle::Outcome;
    const auto throttle_with = [&](Outcome outcome) { throttle_.end(request.peer, user, outcome, Clock::now()); };
    auto parsed = reply.answer ? client::parse_answer(*reply.answer) : core::Result<client::Answer>(core::Error::Empty);
    if (!parsed) {
        throttle_with(Outcome::unknown);
        respond(trouble_response(reply.answer ? Trouble::lost : reply.trouble));
        return;
    }
    const auto& answer = parsed.value();
    ApiSession api{.id = text_member(answer.data.get(), "session_id"),
                   .incarnation = reply.incarnation,
                   .user = user,
                   .privilege = text_member(answer.data.get(), "web_privilege")};
    if (!answer.success || api.id.empty()) {
        throttle_with(Outcome::refused);
        respond(login_refused(answer));
        return;
    }
    throttle_with(Outcome::granted);
    respond(granted(request, std::move(api)));
}

HttpResponse SessionEndpoints::granted(const HttpRequest& request, ApiSession api) {
    // The browser forgets the session that it had.
    if (const auto before = services_.sessions.find(session_id_of(request, services_.settings), Clock::now())) {
        services_.sessions.end(before, SessionEnd::logged_out);
    }
    const auto session = services_.sessions.open(std::move(api), Clock::now());
    auto response = json_response(200, describe(*session, services_));
    response.user = session->api.user;
    const auto name = cookie_name(services_.settings, request.is_secure);
    response.headers.emplace_back("Set-Cookie", session_cookie(name, session->id, request.is_secure));
    return response;
}

void SessionEndpoints::log_out(const HttpRequest& request, const Respond& respond) {
    HttpResponse response{.status = 204, .headers = {{"Cache-Control", "no-store"}}};
    const auto session = services_.sessions.find(session_id_of(request, services_.settings), Clock::now());
    if (session) {
        response.user = session->api.user;
        services_.sessions.end(session, SessionEnd::logged_out);
    }
    const auto name = cookie_name(services_.settings, request.is_secure);
    response.headers.emplace_back("Set-Cookie", no_session_cookie(name, request.is_secure));
    respond(std::move(response));
}

void SessionEndpoints::show(const HttpRequest& request, const Respond& respond) {
    auto [session, response] = caller_of(request, services_);
    if (session) {
        response = json_response(200, describe(*session, services_));
        response.user = session->api.user;
    }
    respond(std::move(response));
}

void SessionEndpoints::stay(const HttpRequest& request, const Respond& respond) {
    if (const auto session = caller_of(request, services_).session) {
        Sessions::touch(*session, Clock::now());
    }
    show(request, respond);
}

} // namespace xpon::gateway
