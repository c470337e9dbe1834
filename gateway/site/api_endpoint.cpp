#include "gateway/site/api_endpoint.hpp"

#include "gateway/daemon/message_text.hpp"

#include <algorithm>
#include <charconv>
#include <utility>

namespace xpon::gateway {
namespace {

std::chrono::seconds patience(const HttpRequest& request, const Settings& settings) {
    constexpr std::string_view wait = "wait=";
    const auto preference = request.header("prefer");
    long seconds = 0;
    if (!preference.starts_with(wait) ||
        std::from_chars(preference.data() + wait.size(), preference.data() + preference.size(), seconds).ec !=
            std::errc{}) {
        return settings.request_timeout;
    }
    return std::clamp(std::chrono::seconds(seconds), std::chrono::seconds(1), settings.longest_request_timeout);
}

HttpResponse answer_response(const Reply& reply) {
    if (!reply.answer) {
        return trouble_response(reply.trouble);
    }
    auto text = print_for_page(*reply.answer);
    return text ? json_response(200, *std::move(text)) : trouble_response(Trouble::lost);
}

} // namespace

void ApiEndpoint::ask(const HttpRequest& request, const Respond& respond) {
    auto [session, refusal] = caller_of(request, services_);
    if (!session) {
        respond(std::move(refusal));
        return;
    }
    const auto respond_as_user = [respond, user = session->api.user](HttpResponse response) {
        response.user = user;
        respond(std::move(response));
    };
    const auto now = Clock::now();
    if (!session->rate.take(now)) {
        auto response =
            error_response(429, "too_many_requests", "Too many requests; the next one is taken in a second.");
        response.headers.emplace_back("Retry-After", "1");
        respond_as_user(std::move(response));
        return;
    }
    const auto read = read_request(request.body);
    if (!read) {
        respond_as_user(error_response(400, "bad_request", read.error().info ? read.error().info->message : ""));
        return;
    }
    if (request.header(background_header).empty()) {
        Sessions::touch(*session, now);
    }
    const auto take = [this, request_again = HttpRequest{.headers = request.headers, .is_secure = request.is_secure},
                       api_path = read.value().path, asking = session, respond_as_user](const Reply& reply) {
        if (reply.answer ? is_unknown_session(*reply.answer) : reply.trouble == Trouble::restarted) {
            services_.sessions.end(asking, SessionEnd::service_restarted);
        }
        const bool is_gone = asking->has_ended && (!reply.answer || is_unknown_session(*reply.answer));
        auto response = is_gone
                            ? no_session(request_again, services_.sessions.why_ended(asking->id), services_.settings)
                            : answer_response(reply);
        response.api_path = api_path;
        respond_as_user(std::move(response));
    };
    if (!services_.requests.ask(session, print_for_session(read.value(), session->api.id),
                                now + patience(request, services_.settings), take)) {
        respond_as_user(error_response(429, "too_many_requests", "Too many requests of this session wait already."));
    }
}

} // namespace xpon::gateway
