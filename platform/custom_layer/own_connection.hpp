#pragma once

#include "xpon/core/logger.hpp"

#include <memory>

struct Ipc;

namespace xpon::custom_layer {

/// For the calls that get no handle: the connections of the layer itself, each made with the first request to a peer.
/// What they share is made with the first call, which belongs into the start: later there may be no descriptor left.
/// Throws std::system_error when they cannot be had.
Ipc* own_connection();

/// Has the next call connect anew, and log to `logger` from then on.
void renew_own_connection(std::shared_ptr<core::ILogger> logger);

} // namespace xpon::custom_layer
