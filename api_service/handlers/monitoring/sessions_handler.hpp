#pragma once

#include "api_service/auth/session.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"
#include "xpon/custom_layer/subscribers.h"
#include "xpon/ipc/ipc.hpp"

#include <memory>

namespace xpon::api_service {

/// All sessions of subscribers that a daemon knows of, in its order.
template <class SessionList>
class MonitoringSessionsHandler {
public:
    MonitoringSessionsHandler(const std::shared_ptr<core::ILogger>& logger, const std::shared_ptr<ipc::IIpc>& ipc);

    core::Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

    static core::Result<core::JsonTree> serialize_payload(const SessionList& sessions);

private:
    std::shared_ptr<core::ILogger> logger_;
    std::shared_ptr<ipc::IIpc> ipc_;
};

using MonitoringDhcpSessionsHandler = MonitoringSessionsHandler<Dhcp_get_sessions_msg>;
using MonitoringPppoeSessionsHandler = MonitoringSessionsHandler<Pppoe_get_sessions_msg>;

extern template class MonitoringSessionsHandler<Dhcp_get_sessions_msg>;
extern template class MonitoringSessionsHandler<Pppoe_get_sessions_msg>;

} // namespace xpon::api_service
