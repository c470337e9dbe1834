#pragma once

#include "api_service/handlers/handler_frame.hpp"
#include "xpon/custom_layer/front_ports.h"
#include "xpon/ranges/port_ranges.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace xpon::api_service {

/// The state of front ports and of the modules in them.
class MonitoringFrontPortStateHandler : HandlerFrame {
public:
    struct PortInfo {
        std::uint8_t port;
        const char* status; ///< a constant
        Front_port_info info;
        std::optional<Front_port_sfp_eddi> eddi; ///< absent when the module measures nothing
    };

    using HandlerFrame::HandlerFrame;

    static const RouteShape shape;

    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

    [[nodiscard]] Result<Bitmap_uplink_port_range> process_request(const Request& request) const;

    /// Ascending by port. One failing library call fails it all, but for a module's diagnostics.
    [[nodiscard]] Result<std::vector<PortInfo>>
    retrieve_front_port_info_from_db(const cfgdb::CfgDbWrapper& db, const Bitmap_uplink_port_range& ports) const;

    [[nodiscard]] static Result<std::string> compose_response(const std::vector<PortInfo>& ports);

private:
    struct Sources;
    [[nodiscard]] Result<std::unique_ptr<Sources>> get_sources(const cfgdb::CfgDbWrapper& db) const;
    [[nodiscard]] Result<PortInfo> describe(const Sources& sources, std::uint8_t port) const;
    [[nodiscard]] Result<const char*> get_status(const Sources& sources, std::uint8_t port) const;
};

} // namespace xpon::api_service
