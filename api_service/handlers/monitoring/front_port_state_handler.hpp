#pragma once

#include "api_service/auth/session.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"
#include "xpon/custom_layer/front_ports.h"
#include "xpon/ipc/ipc.hpp"
#include "xpon/ranges/port_ranges.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace xpon::api_service {

/// The state of front ports and of the modules in them.
class MonitoringFrontPortStateHandler {
public:
    struct PortInfo {
        std::uint8_t port;
        const char* status; ///< a constant
        Front_port_info info;
        std::optional<Front_port_sfp_eddi> eddi; ///< absent when the module measures nothing
    };

    MonitoringFrontPortStateHandler(const std::shared_ptr<core::ILogger>& logger,
                                    const std::shared_ptr<ipc::IIpc>& ipc);

    core::Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

    [[nodiscard]] core::Result<Bitmap_uplink_port_range> process_request(const Request& request) const;

    /// Ascending by port. One failing library call fails it all, but for a module's diagnostics.
    [[nodiscard]] core::Result<std::vector<PortInfo>>
    retrieve_front_port_info_from_db(const cfgdb::CfgDbWrapper& db, const Bitmap_uplink_port_range& ports) const;

    [[nodiscard]] static core::Result<core::JsonTree> compose_response(const std::vector<PortInfo>& ports);

private:
    struct Sources;
    [[nodiscard]] core::Result<std::unique_ptr<Sources>> get_sources(const cfgdb::CfgDbWrapper& db) const;
    [[nodiscard]] core::Result<PortInfo> describe(const Sources& sources, std::uint8_t port) const;
    [[nodiscard]] core::Result<const char*> get_status(const Sources& sources, std::uint8_t port) const;

    std::shared_ptr<core::ILogger> logger_;
    std::shared_ptr<ipc::IIpc> ipc_;
};

} // namespace xpon::api_service
