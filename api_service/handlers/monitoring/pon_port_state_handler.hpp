#pragma once

#include "api_service/auth/session.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"
#include "xpon/custom_layer/pon_ports.h"
#include "xpon/ipc/ipc.hpp"
#include "xpon/ranges/port_ranges.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace xpon::api_service {

/// The state of PON ports and of the modules in them.
class MonitoringPonPortStateHandler {
public:
    struct PortInfo {
        std::uint8_t port;
        Pon_port_state state;
        Pon_port_type type;
        Pon_port_sfp_info module;
    };

    MonitoringPonPortStateHandler(const std::shared_ptr<core::ILogger>& logger, const std::shared_ptr<ipc::IIpc>& ipc);

    core::Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

    [[nodiscard]] core::Result<Bitmap_pon_port_range> process_request(const Request& request) const;

    /// Ascending by port. One failing library call fails it all.
    [[nodiscard]] core::Result<std::vector<PortInfo>>
    retrieve_pon_port_info_from_db(const Bitmap_pon_port_range& ports) const;

    [[nodiscard]] static core::Result<core::JsonTree> compose_response(const std::vector<PortInfo>& ports);

private:
    [[nodiscard]] core::Result<PortInfo> describe(const Pon_ports_states& states,
                                                  const Pon_ports_sfp_extended_information& modules,
                                                  std::uint8_t port) const;

    std::shared_ptr<core::ILogger> logger_;
    std::shared_ptr<ipc::IIpc> ipc_;
};

} // namespace xpon::api_service
