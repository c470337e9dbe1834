#pragma once

#include <utility>

#include <unistd.h>

namespace xpon::core {

/// The one owner of a file descriptor.
class UniqueFd {
public:
    UniqueFd() = default;
    explicit UniqueFd(int fd) : fd_(fd) {}
    UniqueFd(const UniqueFd&) = delete;
    UniqueFd& operator=(const UniqueFd&) = delete;
    UniqueFd(UniqueFd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }
    ~UniqueFd() {
        if (fd_ >= 0) {
            ::close(fd_);
        }
    }

    /// -1 when there is none.
    [[nodiscard]] int get() const {
        return fd_;
    }
    explicit operator bool() const {
        return fd_ >= 0;
    }

private:
    int fd_ = -1;
};

} // namespace xpon::core
