#pragma once

#include "api_service/auth/session.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"
#include "xpon/ipc/ipc.hpp"

#include <memory>

namespace xpon::api_service {

/// Makes every PON port start again.
class ReconfigureOltHandler {
public:
    explicit ReconfigureOltHandler(const std::shared_ptr<core::ILogger>& logger);

    core::Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

private:
    std::shared_ptr<core::ILogger> logger_;
};

/// Makes the PON ports that the one index names start again.
class ReconfigurePonPortHandler {
public:
    ReconfigurePonPortHandler(const std::shared_ptr<core::ILogger>& logger, const std::shared_ptr<ipc::IIpc>& ipc);

    core::Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

private:
    std::shared_ptr<core::ILogger> logger_;
    std::shared_ptr<ipc::IIpc> ipc_;
};

} // namespace xpon::api_service
