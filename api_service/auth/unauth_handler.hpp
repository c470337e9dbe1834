#pragma once

#include "api_service/auth/session_manager.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"

#include <memory>

namespace xpon::api_service {

/// Logout: closes the session that the request names.
class UnauthHandler {
public:
    UnauthHandler(const std::shared_ptr<core::ILogger>& logger, const std::shared_ptr<SessionManager>& session_manager);

    core::Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

private:
    std::shared_ptr<core::ILogger> logger_;
    std::shared_ptr<SessionManager> session_manager_;
};

} // namespace xpon::api_service
