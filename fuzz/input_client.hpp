#pragma once

#include "api_service/client_socket.hpp"
#include "xpon/core/logger.hpp"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

namespace xpon::fuzz {

class NoLogger : public core::ILogger {
public:
    [[nodiscard]] bool is_enabled(core::LogLevel) const override {
        return true; // so that every text is formatted
    }
    void write(core::LogLevel, std::string_view, const std::source_location&) override {}
};

/// A client that sends the input in pieces of changing size, and keeps what it is sent.
class InputClient : public api_service::ClientSocket {
public:
    explicit InputClient(std::string_view input) : ClientSocket(core::UniqueFd()), input_(input) {}

    std::string answers; ///< each with its NUL

protected:
    ssize_t do_recv(void* data, std::size_t size) override {
        piece_ = piece_ * 7 % 4099 + 1;
        const auto count = std::min({size, input_.size(), piece_});
        std::memcpy(data, input_.data(), count);
        input_.remove_prefix(count);
        return static_cast<ssize_t>(count);
    }
    ssize_t do_send(const void* data, std::size_t size) override {
        answers.append(static_cast<const char*>(data), size);
        return static_cast<ssize_t>(size);
    }

private:
    std::string_view input_;
    std::size_t piece_ = 1;
};

} // namespace xpon::fuzz
