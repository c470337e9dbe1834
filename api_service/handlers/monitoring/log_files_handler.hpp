#pragma once

#include "api_service/auth/session.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace xpon::api_service {

/// The names of the device's log files.
class MonitoringLogFiles {
public:
    explicit MonitoringLogFiles(const std::shared_ptr<core::ILogger>& logger);

    core::Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

    /// In the order of the custom layer. Throws std::logic_error for a null name.
    [[nodiscard]] core::Result<std::vector<std::string>>
    get_log_file_list(const std::shared_ptr<cfgdb::CfgDbWrapper>& db) const;

    [[nodiscard]] static core::Result<core::JsonTree> serialize_payload(std::span<const std::string> names);

private:
    std::shared_ptr<core::ILogger> logger_;
};

} // namespace xpon::api_service
