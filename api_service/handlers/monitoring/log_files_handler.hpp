#pragma once

#include "api_service/handlers/handler_frame.hpp"

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace xpon::api_service {

/// The names of the device's log files.
class MonitoringLogFiles : HandlerFrame {
public:
    using HandlerFrame::HandlerFrame;

    static const RouteShape shape;

    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

    /// In the order of the custom layer. Throws std::logic_error for a null name.
    [[nodiscard]] Result<std::vector<std::string>>
    get_log_file_list(const std::shared_ptr<cfgdb::CfgDbWrapper>& db) const;

    [[nodiscard]] static Result<JsonTree> serialize_payload(std::span<const std::string> names);
};

} // namespace xpon::api_service
