#pragma once

#include "api_service/handlers/handler_frame.hpp"
#include "xpon/ranges/ont_range.h"

#include <memory>
#include <string>

namespace xpon::api_service {

/// The state of the configured ONTs of a range, and the unactivated ONTs that are none of them.
class MonitoringOntStateHandler : HandlerFrame {
public:
    using HandlerFrame::HandlerFrame;

    static const RouteShape shape;

    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

    /// No indices stand for all ONTs, two for a range of PON ports and one of ONTs.
    [[nodiscard]] Result<Bitmap_ont_range> get_ont_range(const Request& request) const;

private:
    [[nodiscard]] Result<std::string> serialize_payload(const cfgdb::CfgDbWrapper& db,
                                                        const Bitmap_ont_range& range) const;
};

} // namespace xpon::api_service
