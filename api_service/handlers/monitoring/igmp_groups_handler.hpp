#pragma once

#include "api_service/auth/session.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"
#include "xpon/custom_layer/subscribers.h"
#include "xpon/ipc/ipc.hpp"

#include <cstdint>
#include <functional>
#include <memory>

namespace xpon::api_service {

/// The multicast groups that subscribers of any VLAN have joined, and the VLANs where the OLT looks for them.
class MonitoringIgmpGroupsHandler {
public:
    using VlanInfo = std::unique_ptr<Igmp_vlan_info, std::function<void(Igmp_vlan_info*)>>;

    MonitoringIgmpGroupsHandler(const std::shared_ptr<core::ILogger>& logger, const std::shared_ptr<ipc::IIpc>& ipc);

    core::Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

    /// Adds an object to the array for each group of the VLAN.
    static core::Result<void> serialize_payload(cJSON* groups, const VlanInfo& vlan);

private:
    [[nodiscard]] core::Result<core::JsonTree> create_payload() const;
    [[nodiscard]] core::Result<VlanInfo> get_vlan(std::uint16_t vlan) const;

    std::shared_ptr<core::ILogger> logger_;
    std::shared_ptr<ipc::IIpc> ipc_;
};

} // namespace xpon::api_service
