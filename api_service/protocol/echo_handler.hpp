#pragma once

#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"
#include "xpon/core/logger.hpp"
#include "xpon/core/result.hpp"

#include <memory>

namespace xpon::api_service {

/// Answers with the request's own data: a client can probe the connection and its privilege.
class EchoHandler {
public:
    explicit EchoHandler(const std::shared_ptr<core::ILogger>& logger);

    core::Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

private:
    std::shared_ptr<core::ILogger> logger_;
};

} // namespace xpon::api_service
