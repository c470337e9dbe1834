#include "api_service/client_socket.hpp"

#include <array>
#include <cerrno>
#include <utility>

#include <sys/socket.h>

#include <netinet/in.h>
#include <netinet/tcp.h>

namespace xpon::api_service {
namespace {

/// Lets the kernel send what is written during its life in as few segments as it can. Text and NUL go out with two
/// calls; as two segments they would cost a quarter of the throughput. No effect on other than TCP sockets.
class Cork {
public:
    explicit Cork(int fd) : fd_(fd) {
        set(1);
    }
    Cork(const Cork&) = delete;
    Cork& operator=(const Cork&) = delete;
    ~Cork() {
        set(0);
    }

private:
    void set(int on) const {
        const int cause = errno;
        ::setsockopt(fd_, IPPROTO_TCP, TCP_CORK, &on, sizeof(on));
        errno = cause;
    }

    int fd_;
};

} // namespace

ClientSocket::ClientSocket(core::UniqueFd fd) : fd_(std::move(fd)) {}

std::int64_t ClientSocket::get_frames_left() const {
    return static_cast<std::int64_t>(frames_.size());
}

Result<std::string> ClientSocket::get_frame() {
    auto frame = std::move(frames_.front());
    frames_.pop();
    return frame;
}

Result<void> ClientSocket::send_frame(std::string_view payload) {
    const Cork cork(get_fd());
    if (do_send(payload.data(), payload.size()) != static_cast<ssize_t>(payload.size())) {
        return ErrorPayload(Error::CommonError, "The answer was not sent whole");
    }
    if (do_send("", 1) != 1) {
        return ErrorPayload(Error::CommonError, "The end of the answer was not sent");
    }
    return core::success();
}

int ClientSocket::get_fd() const {
    return fd_.get();
}

Result<void> ClientSocket::read_data() {
    std::array<char, get_buffer_size()> buffer; // NOLINT(*-member-init): filled by do_recv
    const ssize_t count = do_recv(buffer.data(), buffer.size());
    const int cause = std::exchange(errno, 0);
    if (count < 0 && cause == EAGAIN) {
        return core::success();
    }
    if (count <= 0) {
        return ErrorPayload(Error::CommonError);
    }
    cut_frames({buffer.data(), static_cast<std::size_t>(count)});
    return core::success();
}

void ClientSocket::cut_frames(std::string_view received) {
    for (auto end = received.find('\0'); end != std::string_view::npos; end = received.find('\0')) {
        partial_ += received.substr(0, end);
        if (!partial_.empty()) {
            frames_.push(std::exchange(partial_, {}));
        }
        received.remove_prefix(end + 1);
    }
    partial_ += received;
}

ssize_t ClientSocket::do_send(const void* data, std::size_t size) {
    return ::send(get_fd(), data, size, MSG_NOSIGNAL);
}

ssize_t ClientSocket::do_recv(void* data, std::size_t size) {
    return ::recv(get_fd(), data, size, MSG_DONTWAIT);
}

} // namespace xpon::api_service
