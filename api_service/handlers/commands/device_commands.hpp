#pragma once

#include "api_service/handlers/handler_frame.hpp"
#include "xpon/ranges/ont_range.h"

#include <functional>
#include <memory>
#include <vector>

// Commands that act on the device and its ONTs.

namespace xpon::api_service {

/// Reboots the OLT. The answer may come before it goes down.
class RebootHandler : HandlerFrame {
public:
    using HandlerFrame::HandlerFrame;

    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;
};

/// Makes every PON port start again.
class ReconfigureOltHandler : HandlerFrame {
public:
    using HandlerFrame::HandlerFrame;

    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;
};

/// Makes the PON ports that the one index names start again.
class ReconfigurePonPortHandler : HandlerFrame {
public:
    using HandlerFrame::HandlerFrame;

    static constexpr RouteShape shape{.indices = IndexCount::one};

    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;
};

/// Does something with ONTs, which the indices name: one set each, "1-2/1-8,12".
class OntActionHandler : HandlerFrame {
public:
    static constexpr RouteShape shape{.indices = IndexCount::some};

    using Action = std::function<int(Ipc* ipc, const Bitmap_ont_range* range)>;

    OntActionHandler(const std::shared_ptr<ILogger>& logger, const std::shared_ptr<ipc::IIpc>& ipc, Action action);

    /// Acts on one set after the other once all are known to be good. The first that fails ends the walk; what was
    /// done to those before stays done.
    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

private:
    [[nodiscard]] Result<std::vector<Bitmap_ont_range>> get_ranges(const Request& request) const;

    Action action_;
};

} // namespace xpon::api_service
