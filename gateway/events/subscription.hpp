#pragma once

#include "gateway/daemon/message_text.hpp"
#include "gateway/settings.hpp"
#include "xpon/core/result.hpp"

#include <chrono>
#include <string_view>
#include <vector>

namespace xpon::gateway {

/// One thing that a page watches.
struct WatchedRequest {
    PageRequest request;
    std::chrono::milliseconds interval;
};

/// What a page subscribes to by a query: `watch`, a JSON array of requests with the method "get", which need not be
/// given, and `interval` in milliseconds, which an `interval` in a request goes before. Intervals that are too short
/// are lengthened. Error InvalidInputArg with the reason.
core::Result<std::vector<WatchedRequest>> read_subscription(std::string_view query, const Settings& settings);

} // namespace xpon::gateway
