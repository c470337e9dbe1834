#pragma once

#include "api_service/auth/session.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"
#include "xpon/ipc/ipc.hpp"
#include "xpon/ranges/ont_range.h"

#include <functional>
#include <memory>
#include <vector>

namespace xpon::api_service {

/// Does something with ONTs, which the indices name: one set each, "1-2/1-8,12".
class OntActionHandler {
public:
    using Action = std::function<int(Ipc* ipc, const Bitmap_ont_range* range)>;

    OntActionHandler(const std::shared_ptr<core::ILogger>& logger, const std::shared_ptr<ipc::IIpc>& ipc,
                     Action action);

    /// Acts on one set after the other once all are known to be good. The first that fails ends the walk; what was
    /// done to those before stays done.
    core::Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

private:
    [[nodiscard]] core::Result<std::vector<Bitmap_ont_range>> get_ranges(const Request& request) const;

    std::shared_ptr<core::ILogger> logger_;
    std::shared_ptr<ipc::IIpc> ipc_;
    Action action_;
};

} // namespace xpon::api_service
