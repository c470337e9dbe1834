#pragma once

#include "api_service/handlers/handler_frame.hpp"
#include "xpon/custom_layer/system.h"

#include <memory>
#include <string>

namespace xpon::api_service {

/// The state of the board: memory, load, fans, temperatures, power supplies, firmware and factory identity.
class MonitoringSystemHandler : HandlerFrame {
public:
    using HandlerFrame::HandlerFrame;

    static const RouteShape shape;

    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

private:
    [[nodiscard]] Result<System_environment_data> get_environment() const;
    [[nodiscard]] Result<std::string> serialize_payload() const;
};

/// The name of a temperature sensor, padded as clients show it. Error InvalidInputArg for an unknown one.
Result<std::string> get_sensor_id_str(Brd_api__temp_id id);

} // namespace xpon::api_service
