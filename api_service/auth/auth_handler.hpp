#pragma once

#include "api_service/auth/pam_interfaces.hpp"
#include "api_service/auth/session_manager.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"

#include <memory>

namespace xpon::api_service {

/// Login: checks a name and password and opens a session. Leaves no session behind unless it succeeds.
class AuthHandler {
public:
    AuthHandler(const std::shared_ptr<core::ILogger>& logger, const std::shared_ptr<SessionManager>& session_manager,
                const std::shared_ptr<IPamApi>& pam);

    core::Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

    /// A new session with the user's privilege. Errors: InvalidInputArg for unusable data, NoAccess for a refused
    /// password, others from PAM and the database.
    [[nodiscard]] core::Result<std::shared_ptr<Session>> create_session(const Request& request) const;

private:
    [[nodiscard]] core::Result<std::shared_ptr<Session>> open_session(const Request& request) const;
    [[nodiscard]] Response refuse(const std::shared_ptr<Session>& session, const char* reason) const;

    std::shared_ptr<core::ILogger> logger_;
    std::shared_ptr<SessionManager> session_manager_;
    std::shared_ptr<IPamApi> pam_;
};

} // namespace xpon::api_service
