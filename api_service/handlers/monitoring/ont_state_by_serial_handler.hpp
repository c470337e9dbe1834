#pragma once

#include "api_service/auth/session.hpp"
#include "api_service/handlers/monitoring/ont_serial.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"
#include "xpon/ipc/ipc.hpp"

#include <memory>
#include <optional>

namespace xpon::api_service {

/// Finds one ONT, configured or not, by its serial number.
class MonitoringOntStateBySerialHandler {
public:
    MonitoringOntStateBySerialHandler(const std::shared_ptr<core::ILogger>& logger,
                                      const std::shared_ptr<ipc::IIpc>& ipc);

    /// A serial number that cannot be read is an error response; an ONT that is nowhere is an empty "monitoring".
    core::Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

private:
    [[nodiscard]] core::Result<core::JsonTree> serialize_payload(const cfgdb::CfgDbWrapper& db, const OntSerial& serial,
                                                                 std::optional<ConfigurationType> type) const;
    core::Result<void> add_configuration(cJSON* root, const cfgdb::CfgDbWrapper& db, unsigned short config_index,
                                         std::optional<ConfigurationType> type) const;

    std::shared_ptr<core::ILogger> logger_;
    std::shared_ptr<ipc::IIpc> ipc_;
};

} // namespace xpon::api_service
