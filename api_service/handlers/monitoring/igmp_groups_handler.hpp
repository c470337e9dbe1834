#pragma once

#include "api_service/handlers/handler_frame.hpp"
#include "api_service/protocol/json_writer.hpp"
#include "xpon/custom_layer/subscribers.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace xpon::api_service {

/// The multicast groups that subscribers of any VLAN have joined, and the VLANs where the OLT looks for them.
class MonitoringIgmpGroupsHandler : HandlerFrame {
public:
    using VlanInfo = std::unique_ptr<Igmp_vlan_info, std::function<void(Igmp_vlan_info*)>>;

    using HandlerFrame::HandlerFrame;

    static const RouteShape shape;

    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

    /// Adds an object to the array for each group of the VLAN.
    static Result<void> serialize_payload(JsonWriter& groups, const VlanInfo& vlan);

private:
    [[nodiscard]] Result<void> check_daemon() const;
    [[nodiscard]] Result<std::string> create_payload() const;
    [[nodiscard]] Result<VlanInfo> get_vlan(std::uint16_t vlan) const;
};

} // namespace xpon::api_service
