#pragma once

#include "ipc/peer_connection.hpp"
#include "xpon/core/logger.hpp"
#include "xpon/ipc/ipc.hpp"

#include <cstdint>
#include <memory>

namespace xpon::ipc {

enum class Connecting : std::uint8_t {
    by_call,    ///< a peer is asked only after connect()
    on_request, ///< the first request to a peer connects to it
};

/// An endpoint that logs to `logger`, with patience of its own choice.
core::Result<std::shared_ptr<IIpc>> make_zmq_ipc(Address own, const std::shared_ptr<core::ILogger>& logger,
                                                 const Timing& timing, Connecting connecting = Connecting::by_call);

} // namespace xpon::ipc
