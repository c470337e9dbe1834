#pragma once

#include "api_service/auth/session.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"
#include "xpon/ipc/ipc.hpp"
#include "xpon/ranges/ont_range.h"

#include <memory>

namespace xpon::api_service {

/// The state of the configured ONTs of a range, and the unactivated ONTs that are none of them.
class MonitoringOntStateHandler {
public:
    MonitoringOntStateHandler(const std::shared_ptr<core::ILogger>& logger, const std::shared_ptr<ipc::IIpc>& ipc);

    core::Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

    /// No indices stand for all ONTs, two for a range of PON ports and one of ONTs.
    [[nodiscard]] core::Result<Bitmap_ont_range> get_ont_range(const Request& request) const;

private:
    [[nodiscard]] core::Result<core::JsonTree> serialize_payload(const cfgdb::CfgDbWrapper& db,
                                                                 const Bitmap_ont_range& range) const;

    std::shared_ptr<core::ILogger> logger_;
    std::shared_ptr<ipc::IIpc> ipc_;
};

} // namespace xpon::api_service
