#pragma once

#include "api_service/handlers/handler_frame.hpp"
#include "xpon/custom_layer/subscribers.h"

#include <memory>
#include <string>

namespace xpon::api_service {

/// All sessions of subscribers that a daemon knows of, in its order.
template <class SessionList>
class MonitoringSessionsHandler : HandlerFrame {
public:
    using HandlerFrame::HandlerFrame;

    static const RouteShape shape;

    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

    static Result<std::string> serialize_payload(const SessionList& sessions);
};

using MonitoringDhcpSessionsHandler = MonitoringSessionsHandler<Dhcp_get_sessions_msg>;
using MonitoringPppoeSessionsHandler = MonitoringSessionsHandler<Pppoe_get_sessions_msg>;

extern template class MonitoringSessionsHandler<Dhcp_get_sessions_msg>;
extern template class MonitoringSessionsHandler<Pppoe_get_sessions_msg>;

} // namespace xpon::api_service
