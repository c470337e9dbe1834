#pragma once

#include "api_service/handlers/handler_frame.hpp"
#include "api_service/handlers/monitoring/ont_serial.hpp"
#include "api_service/protocol/json_writer.hpp"

#include <memory>
#include <optional>
#include <string>

namespace xpon::api_service {

/// Finds one ONT, configured or not, by its serial number.
class MonitoringOntStateBySerialHandler : HandlerFrame {
public:
    using HandlerFrame::HandlerFrame;

    static const RouteShape shape;

    /// A serial number that cannot be read is an error response; an ONT that is nowhere is an empty "monitoring".
    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

private:
    [[nodiscard]] Result<std::string> serialize_payload(const cfgdb::CfgDbWrapper& db, const OntSerial& serial,
                                                        std::optional<ConfigurationType> type) const;
    Result<void> add_configuration(JsonWriter& root, const cfgdb::CfgDbWrapper& db, unsigned short config_index,
                                   std::optional<ConfigurationType> type) const;
};

} // namespace xpon::api_service
