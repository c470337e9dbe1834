#pragma once

#include "api_service/auth/session.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"
#include "xpon/custom_layer/system.h"
#include "xpon/ipc/ipc.hpp"

#include <memory>
#include <string>

namespace xpon::api_service {

/// The state of the board: memory, load, fans, temperatures, power supplies, firmware and factory identity.
class MonitoringSystemHandler {
public:
    MonitoringSystemHandler(const std::shared_ptr<core::ILogger>& logger, const std::shared_ptr<ipc::IIpc>& ipc);

    core::Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

private:
    [[nodiscard]] core::Result<System_environment_data> get_environment() const;
    [[nodiscard]] core::Result<core::JsonTree> serialize_payload() const;

    std::shared_ptr<core::ILogger> logger_;
    std::shared_ptr<ipc::IIpc> ipc_;
};

/// The name of a temperature sensor, padded as clients show it. Error InvalidInputArg for an unknown one.
core::Result<std::string> get_sensor_id_str(Brd_api__temp_id id);

} // namespace xpon::api_service
