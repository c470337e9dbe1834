#pragma once

#include "api_service/handlers/handler_frame.hpp"
#include "xpon/custom_layer/snmp.h"

#include <memory>

namespace xpon::api_service {

/// Makes the SNMP engine id of this board.
class GenerateSnmpEngineIDHandler : HandlerFrame {
public:
    using HandlerFrame::HandlerFrame;

    static const RouteShape shape;

    /// The data is the id itself, a string.
    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

    static Result<JsonTree> serialize_payload(const Snmp_environment_data& environment);
};

} // namespace xpon::api_service
