#pragma once

#include "api_service/protocol/request.hpp"
#include "xpon/core/c_status.hpp"
#include "xpon/core/logger.hpp"
#include "xpon/core/result.hpp"

namespace xpon::api_service {

/// The set of ports that the request's one index names.
template <class Bitmap>
core::Result<Bitmap> get_port_range(core::ILogger& logger, const Request& request,
                                    int (*parse)(const char* text, Bitmap* out)) {
    if (request.indices.size() != 1) {
        return core::ErrorPayload(core::Error::InvalidInputArg, "Indices must contain exactly one element");
    }
    Bitmap ports{};
    BOOST_OUTCOME_TRY(core::call_c_api(logger, [&] { return parse(request.indices.front().c_str(), &ports); }));
    return ports;
}

} // namespace xpon::api_service
