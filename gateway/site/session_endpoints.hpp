#pragma once

#include "gateway/http/message.hpp"
#include "gateway/sessions/login_throttle.hpp"
#include "gateway/site/services.hpp"

#include <string>

namespace xpon::gateway {

/// Login, logout, and what is left of a session.
class SessionEndpoints {
public:
    explicit SessionEndpoints(const Services& services) : services_(services) {}

    /// POST /api/login
    void log_in(const HttpRequest& request, const Respond& respond);
    /// POST /api/logout. Also succeeds without a session.
    void log_out(const HttpRequest& request, const Respond& respond);
    /// GET /api/session. Asking does not lengthen it.
    void show(const HttpRequest& request, const Respond& respond);
    /// POST /api/session: its user is there.
    void stay(const HttpRequest& request, const Respond& respond);

private:
    void finish_login(const HttpRequest& request, const std::string& user, const Reply& reply, const Respond& respond);
    HttpResponse granted(const HttpRequest& request, ApiSession api);

    const Services services_;
    LoginThrottle throttle_;
    std::size_t logins_under_way_ = 0;
};

} // namespace xpon::gateway
