#pragma once

#include "api_service/handlers/handler_frame.hpp"
#include "xpon/custom_layer/pon_ports.h"
#include "xpon/ranges/port_ranges.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace xpon::api_service {

/// The state of PON ports and of the modules in them.
class MonitoringPonPortStateHandler : HandlerFrame {
public:
    struct PortInfo {
        std::uint8_t port;
        Pon_port_state state;
        Pon_port_type type;
        Pon_port_sfp_info module;
    };

    using HandlerFrame::HandlerFrame;

    static const RouteShape shape;

    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

    [[nodiscard]] Result<Bitmap_pon_port_range> process_request(const Request& request) const;

    /// Ascending by port. One failing library call fails it all.
    [[nodiscard]] Result<std::vector<PortInfo>>
    retrieve_pon_port_info_from_db(const Bitmap_pon_port_range& ports) const;

    [[nodiscard]] static Result<std::string> compose_response(const std::vector<PortInfo>& ports);

private:
    [[nodiscard]] Result<PortInfo> describe(const Pon_ports_states& states,
                                            const Pon_ports_sfp_extended_information& modules, std::uint8_t port) const;
};

} // namespace xpon::api_service
