#pragma once

#include "api_service/handlers/handler_frame.hpp"

#include <memory>

namespace xpon::api_service {

/// The fixed capacities of the device, with which a client sizes its tables.
class MonitoringConstants : HandlerFrame {
public:
    using HandlerFrame::HandlerFrame;

    static const RouteShape shape;

    /// Needs no session.
    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

private:
    [[nodiscard]] Result<JsonTree> serialize_payload() const;
};

} // namespace xpon::api_service
