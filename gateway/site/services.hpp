#pragma once

#include "gateway/daemon/daemon_link.hpp"
#include "gateway/daemon/session_requests.hpp"
#include "gateway/http/message.hpp"
#include "gateway/sessions/sessions.hpp"
#include "gateway/settings.hpp"

#include <memory>
#include <optional>
#include <string>

namespace xpon::gateway {

/// What the endpoints work with.
struct Services {
    const Settings& settings;
    DaemonLink& daemon;
    Sessions& sessions;
    SessionRequests& requests;
};

/// Who sends a request: a session, or the refusal of those who have none.
struct Caller {
    std::shared_ptr<Session> session;
    HttpResponse refusal;
};
Caller caller_of(const HttpRequest& request, const Services& services);

/// Status 401 with the reason why the session is no more, as far as it is known, for the browser to forget it.
HttpResponse no_session(const HttpRequest& request, std::optional<SessionEnd> why, const Settings& settings);

/// "session" of the settings' and request's cookie, as the browser sent it.
std::string session_id_of(const HttpRequest& request, const Settings& settings);

/// What pages learn of a session.
std::string describe(const Session& session, const Services& services);

/// Ends the session in the daemon too, whoever is told of that or not.
void end_in_daemon(const ApiSession& session, const Services& services);

HttpResponse trouble_response(Trouble trouble);

} // namespace xpon::gateway
