#include "gateway/site/site.hpp"

#include "gateway/http/request_rules.hpp"

#include <utility>

#include <fmt/format.h>

namespace xpon::gateway {

struct Site::Endpoint {
    std::string_view method;
    std::string_view path;
    void (*handle)(Site&, const HttpRequest&, const Respond&);
};

const Site::Endpoint Site::endpoints[] = {
    {"POST", "/api", [](Site& s, const HttpRequest& q, const Respond& r) { s.api_.ask(q, r); }},
    {"GET", "/api/events", [](Site& s, const HttpRequest& q, const Respond& r) { s.events_.open(q, r); }},
    {"POST", "/api/login", [](Site& s, const HttpRequest& q, const Respond& r) { s.session_.log_in(q, r); }},
    {"POST", "/api/logout", [](Site& s, const HttpRequest& q, const Respond& r) { s.session_.log_out(q, r); }},
    {"GET", "/api/session", [](Site& s, const HttpRequest& q, const Respond& r) { s.session_.show(q, r); }},
    {"POST", "/api/session", [](Site& s, const HttpRequest& q, const Respond& r) { s.session_.stay(q, r); }},
};

Site::Site(boost::asio::io_context& context, const Settings& settings)
    : settings_(settings), daemon_(context, settings.service_port),
      sessions_(settings,
                [this](const std::shared_ptr<Session>& session, SessionEnd why) {
                    requests_.drop(session);
                    events_.session_has_ended(session, why);
                    end_in_daemon(session->api, services_);
                }),
      requests_(daemon_, settings.waiting_requests), services_{settings, daemon_, sessions_, requests_},
      session_(services_), api_(services_), events_(context, services_), files_(settings.pages) {}

void Site::start() {
    daemon_.start([this] {
        events_.service_has_changed();
        if (daemon_.is_up()) {
            sessions_.end_those_before(daemon_.incarnation());
        }
    });
}

void Site::handle(const HttpRequest& request, const Respond& respond) {
    if (auto refusal = refuse_unknown_host(request, settings_)) {
        respond(*std::move(refusal));
        return;
    }
    const auto path = request.path();
    if (path != "/api" && !path.starts_with("/api/")) {
        respond(request.method == "GET" || request.method == "HEAD"
                    ? files_.get(request)
                    : error_response(405, "wrong_method", "Pages are read with GET"));
        return;
    }
    if (auto refusal = refuse_foreign(request)) {
        respond(*std::move(refusal));
        return;
    }
    std::string_view allowed;
    for (const auto& endpoint : endpoints) {
        if (endpoint.path != path) {
            continue;
        }
        if (endpoint.method == request.method) {
            auto refusal = request.method == "POST" ? refuse_plain_form(request) : std::nullopt;
            refusal ? respond(*std::move(refusal)) : endpoint.handle(*this, request, respond);
            return;
        }
        allowed = endpoint.method;
    }
    respond(allowed.empty() ? error_response(404, "unknown_endpoint", "There is no such endpoint")
                            : error_response(405, "wrong_method", fmt::format("Use {}", allowed)));
}

void Site::tick() {
    const auto now = Clock::now();
    sessions_.end_overdue(now);
    daemon_.drop_overdue();
    events_.tick(now);
}

bool Site::stop() {
    const bool were_any = sessions_.size() > 0;
    sessions_.end_all(SessionEnd::stopped);
    return were_any;
}

} // namespace xpon::gateway
