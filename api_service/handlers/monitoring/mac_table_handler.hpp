#pragma once

#include "api_service/auth/session.hpp"
#include "api_service/handlers/library_calls.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"
#include "xpon/custom_layer/subscribers.h"
#include "xpon/ipc/ipc.hpp"

#include <memory>

namespace xpon::api_service {

/// The addresses that the switch has learned.
class MonitoringMacTable {
public:
    MonitoringMacTable(const std::shared_ptr<core::ILogger>& logger, const std::shared_ptr<ipc::IIpc>& ipc);

    /// Without indices all addresses, with one those behind the ONTs that it names ("1-2/1-8,12").
    core::Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

    /// An array with an object for each address, in their order.
    static core::Result<core::JsonTree> serialize_payload(const Bcm_get_mac_table_response& table);

private:
    [[nodiscard]] core::Result<LibraryBuffer<Bcm_get_mac_table_response>> get_mac_table(const Request& request) const;

    std::shared_ptr<core::ILogger> logger_;
    std::shared_ptr<ipc::IIpc> ipc_;
};

} // namespace xpon::api_service
