#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace xpon::test {

/// The service manager's end of the notify protocol: receives what a daemon says with sd_notify.
class NotifySocket {
public:
    explicit NotifySocket(const std::string& path);
    NotifySocket(const NotifySocket&) = delete;
    NotifySocket& operator=(const NotifySocket&) = delete;
    ~NotifySocket();

    /// The next notification; empty when none comes within `limit`.
    std::optional<std::string> next(std::chrono::milliseconds limit = std::chrono::seconds(30));

private:
    int descriptor_;
};

} // namespace xpon::test
