#pragma once

#include "api_service/auth/session.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"
#include "xpon/custom_layer/snmp.h"
#include "xpon/ipc/ipc.hpp"

#include <memory>

namespace xpon::api_service {

/// Makes the SNMP engine id of this board.
class GenerateSnmpEngineIDHandler {
public:
    GenerateSnmpEngineIDHandler(const std::shared_ptr<core::ILogger>& logger, const std::shared_ptr<ipc::IIpc>& ipc);

    /// The data is the id itself, a string.
    core::Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

    static core::Result<core::JsonTree> serialize_payload(const Snmp_environment_data& environment);

private:
    std::shared_ptr<core::ILogger> logger_;
    std::shared_ptr<ipc::IIpc> ipc_;
};

} // namespace xpon::api_service
