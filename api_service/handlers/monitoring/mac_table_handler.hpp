#pragma once

#include "api_service/handlers/handler_frame.hpp"
#include "api_service/handlers/library_buffers.hpp"
#include "xpon/custom_layer/subscribers.h"

#include <memory>
#include <string>

namespace xpon::api_service {

/// The addresses that the switch has learned.
class MonitoringMacTable : HandlerFrame {
public:
    using HandlerFrame::HandlerFrame;

    static const RouteShape shape;

    /// Without indices all addresses, with one those behind the ONTs that it names ("1-2/1-8,12").
    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

    /// An array with an object for each address, in their order.
    static Result<std::string> serialize_payload(const Bcm_get_mac_table_response& table);

private:
    [[nodiscard]] Result<LibraryBuffer<Bcm_get_mac_table_response>> get_mac_table(const Request& request) const;
};

} // namespace xpon::api_service
