#pragma once

#include "api_service/auth/pam_interfaces.hpp"
#include "api_service/auth/session_manager.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"
#include "api_service/protocol/shape.hpp"

#include <memory>

namespace xpon::api_service {

/// The data of a login request: {"user": .., "password": ..}.
struct AuthRequestPayload {
    /// Error InvalidInputArg when a member is missing or no string.
    static Result<AuthRequestPayload> from_payload(const Payload& payload);

    std::string user;
    std::string password;
};

/// The data of its answer: {"session_id": .., "web_privilege": name of the level}.
struct AuthResponsePayload {
    [[nodiscard]] Result<Payload> make_payload() const;

    std::string session_id;
    PrivilegeLevel privilege = PrivilegeLevel::Nothing;
};

/// Login: checks a name and password and opens a session. Leaves no session behind unless it succeeds, and a refusal
/// names none: neither one that is closed again nor the one in which the request came.
class AuthHandler {
public:
    static const RouteShape shape;

    AuthHandler(const std::shared_ptr<ILogger>& logger, const std::shared_ptr<SessionManager>& session_manager,
                const std::shared_ptr<IPamApi>& pam);

    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

    /// A new session with the user's privilege. Errors: InvalidInputArg for unusable data, NoAccess for a refused
    /// password, others from PAM and the database.
    [[nodiscard]] Result<std::shared_ptr<Session>> create_session(const Request& request) const;

private:
    [[nodiscard]] Result<std::shared_ptr<Session>> open_session(const Request& request) const;
    [[nodiscard]] Response refuse(const char* reason) const;

    std::shared_ptr<ILogger> logger_;
    std::shared_ptr<SessionManager> session_manager_;
    std::shared_ptr<IPamApi> pam_;
};

/// Logout: closes the session that the request names.
class UnauthHandler {
public:
    UnauthHandler(const std::shared_ptr<ILogger>& logger, const std::shared_ptr<SessionManager>& session_manager);

    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

private:
    std::shared_ptr<ILogger> logger_;
    std::shared_ptr<SessionManager> session_manager_;
};

} // namespace xpon::api_service
