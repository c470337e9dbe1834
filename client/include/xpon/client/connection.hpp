#pragma once

#include "xpon/client/frame.hpp"
#include "xpon/core/result.hpp"
#include "xpon/core/unique_fd.hpp"

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace xpon::client {

struct TcpEndpoint {
    std::uint16_t port = 9999; ///< on 127.0.0.1
};
struct UnixEndpoint {
    std::string path; ///< at most 107 bytes
};
using Endpoint = std::variant<TcpEndpoint, UnixEndpoint>;

/// When a call gives up.
using Deadline = std::chrono::steady_clock::time_point;

/// A connection to the daemon that carries frames: texts, each ended by one NUL byte. Movable; the destructor closes
/// it. Errors of all calls are told apart by fault_of.
class Connection {
public:
    static core::Result<Connection> open(const Endpoint& endpoint);

    /// Sends `text`, which holds no NUL byte, and the NUL behind it.
    core::Result<void> send_frame(std::string_view text, Deadline deadline);
    /// Sends bytes as they are, for those who want to say something odd.
    core::Result<void> send_bytes(std::string_view bytes, Deadline deadline);
    /// The next frame, without its NUL.
    core::Result<std::string> receive_frame(Deadline deadline);

    [[nodiscard]] int descriptor() const {
        return descriptor_.get();
    }

private:
    explicit Connection(core::UniqueFd descriptor) : descriptor_(std::move(descriptor)) {}

    core::UniqueFd descriptor_;
    FrameReader received_; // what stands behind the last frame that was handed out
};

} // namespace xpon::client
