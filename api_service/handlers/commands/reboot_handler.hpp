#pragma once

#include "api_service/auth/session.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"

#include <memory>

namespace xpon::api_service {

/// Reboots the OLT. The answer may come before it goes down.
class RebootHandler {
public:
    explicit RebootHandler(const std::shared_ptr<core::ILogger>& logger);

    core::Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

private:
    std::shared_ptr<core::ILogger> logger_;
};

} // namespace xpon::api_service
