#pragma once

#include "xpon/core/logger.hpp"
#include "xpon/core/result.hpp"
#include "xpon/ipc/address.hpp"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include <poll.h>

namespace xpon::ipc {

/// A request that reached a peer. `payload` is valid during the call of the handler only.
struct ServerRequest {
    Address peer;   ///< who was asked
    Address client; ///< who asks, as it says itself
    std::uint16_t operation = 0;
    std::span<const std::byte> payload;
    bool is_repeated = false; ///< it went to several peers in one message, and another has just been given it
};

/// A peer's answer. `status` is 0, or the errno value with which the call fails at the client.
struct ServerAnswer {
    int status = 0;
    std::vector<std::byte> payload;
    /// How long the server keeps the answer back, while it goes on serving: how a slow peer is played.
    std::chrono::milliseconds delay{};
};

/// What a peer daemon does with its requests.
class IPeerHandler {
public:
    IPeerHandler() = default;
    IPeerHandler(const IPeerHandler&) = delete;
    IPeerHandler& operator=(const IPeerHandler&) = delete;
    virtual ~IPeerHandler() = default;

    virtual ServerAnswer handle(const ServerRequest& request) = 0;
    /// A hello or probe of a client. Whatever the answer says, it means that the peer is there.
    virtual ServerAnswer greet(const ServerRequest&) {
        return {};
    }
    /// A message that wants no answer.
    virtual void notice(const ServerRequest& request) = 0;
};

/// Serves any number of peer addresses from one thread.
class IServer {
public:
    IServer() = default;
    IServer(const IServer&) = delete;
    IServer& operator=(const IServer&) = delete;
    virtual ~IServer() = default;

    /// Starts to serve `peer`. `handler` must outlive the server. Errors: Already when a process serves this address;
    /// CommonError, naming the socket's path, when it is too long or cannot be bound.
    virtual core::Result<void> bind(Address peer, IPeerHandler& handler) = 0;

    /// Stops serving `peer`: to its clients its daemon is gone. Answers that were kept back are lost. Not to be called
    /// by a handler. Error Empty when it is not served.
    virtual core::Result<void> unbind(Address peer) = 0;

    /// Serves what has arrived, waiting up to `timeout` for the first message, and sends answers that are due. A
    /// message that is no well-formed request is dropped, and so is a request whose asker waits no longer. An
    /// interrupting signal ends the wait early, with success, and so does whatever `others` wait for, as for poll().
    virtual core::Result<void> serve(std::chrono::milliseconds timeout, std::span<pollfd> others) = 0;
};

/// A server over ZeroMQ. What a handler throws is written to `logger` and answered with EIO.
core::Result<std::unique_ptr<IServer>> make_zmq_server(const std::shared_ptr<core::ILogger>& logger);

} // namespace xpon::ipc
