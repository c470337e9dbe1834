#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace xpon::client {

/// How messages are told apart on a connection, without the connection: a frame is a text and the NUL byte behind it.

/// `text`, which holds no NUL byte, as it goes over a connection.
[[nodiscard]] std::string make_frame(std::string_view text);

/// Cuts what arrives into frames.
class FrameReader {
public:
    void append(std::string_view received) {
        received_.append(received);
    }

    /// The next frame that is complete, without its NUL.
    [[nodiscard]] std::optional<std::string> next();

    /// Bytes that no frame has been made of yet.
    [[nodiscard]] std::size_t size() const {
        return received_.size();
    }

private:
    std::string received_;
    std::size_t searched_ = 0; // no NUL before this position
};

} // namespace xpon::client
