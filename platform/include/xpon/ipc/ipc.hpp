#pragma once

#include "xpon/core/result.hpp"
#include "xpon/ipc/address.hpp"

#include <memory>
#include <string>

/// The connections of one endpoint as the custom layer's C calls take them. Opaque to their caller.
struct Ipc;

namespace xpon::ipc {

/// One endpoint of the device's inter-process communication, with its connections to other daemons.
class IIpc {
public:
    IIpc() = default;
    IIpc(const IIpc&) = delete;
    IIpc& operator=(const IIpc&) = delete;
    virtual ~IIpc() = default;

    /// Connects to the daemon at `peer` and shakes hands with it: success means that it is there and answers in the
    /// same version. Waits 3 s at most. Connecting again to a connected peer asks whether it is still there: an error
    /// of code Already when it is, any other when it is not.
    virtual core::Result<void> connect(Address peer) = 0;

    /// The handle for `custom_layer__` calls. Owned by this object.
    [[nodiscard]] virtual Ipc* raw() const = 0;
};

/// An endpoint over ZeroMQ with the address `own`. `name` is the logging category of the endpoint.
core::Result<std::shared_ptr<IIpc>> make_zmq_ipc(Address own, const std::string& name);

} // namespace xpon::ipc
