#pragma once

#include "api_service/auth/session.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"

#include <memory>

namespace xpon::api_service {

/// The fixed capacities of the device, with which a client sizes its tables.
class MonitoringConstants {
public:
    explicit MonitoringConstants(const std::shared_ptr<core::ILogger>& logger);

    /// Needs no session.
    core::Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

private:
    [[nodiscard]] core::Result<core::JsonTree> serialize_payload() const;

    std::shared_ptr<core::ILogger> logger_;
};

} // namespace xpon::api_service
