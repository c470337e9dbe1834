#pragma once

#include "ipc/peer_connection.hpp"
#include "xpon/core/logger.hpp"
#include "xpon/ipc/ipc.hpp"

#include <memory>

namespace xpon::ipc {

/// An endpoint that logs to `logger`, with patience of its own choice.
core::Result<std::shared_ptr<IIpc>> make_zmq_ipc(Address own, const std::shared_ptr<core::ILogger>& logger,
                                                 const Timing& timing);

} // namespace xpon::ipc
