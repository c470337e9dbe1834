#include "api_service/send_buffer.hpp"

#include "xpon/core/unique_fd.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <memory>

#include <sys/ioctl.h>
#include <sys/socket.h>

#include <linux/sockios.h>
#include <netinet/in.h>

namespace xpon::api_service {
namespace {

/// The greatest size that SO_SNDBUF may ask for.
long plain_limit() {
    long limit = 0;
    std::ifstream("/proc/sys/net/core/wmem_max") >> limit;
    return limit;
}

/// The size up to which the kernel tunes a TCP send buffer by itself.
long tuning_limit() {
    long least = 0;
    long usual = 0;
    long most = 0;
    std::ifstream("/proc/sys/net/ipv4/tcp_wmem") >> least >> usual >> most;
    return most;
}

/// What the kernel allows for data and its own bookkeeping; it doubles what set_size() asks for.
int size_of(int fd) {
    int size = 0;
    socklen_t length = sizeof(size);
    ::getsockopt(fd, SOL_SOCKET, SO_SNDBUF, &size, &length);
    return size;
}

bool set_size(int fd, int size) {
    if (::setsockopt(fd, SOL_SOCKET, SO_SNDBUFFORCE, &size, sizeof(size)) == 0) {
        return true;
    }
    // A size set by hand switches the tuning off, so it must be worth it.
    static const bool worth_it = 2 * plain_limit() > tuning_limit();
    return worth_it && ::setsockopt(fd, SOL_SOCKET, SO_SNDBUF, &size, sizeof(size)) == 0;
}

/// A TCP connection over loopback whose other end never reads; no descriptors when it cannot be had.
struct UnreadConnection {
    core::UniqueFd listener{::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)};
    core::UniqueFd reader{::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)};
    core::UniqueFd sender;

    UnreadConnection() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof(address);
        auto* const place = reinterpret_cast<sockaddr*>(&address);
        if (::bind(listener.get(), place, length) == 0 && ::listen(listener.get(), 1) == 0 &&
            ::getsockname(listener.get(), place, &length) == 0 && ::connect(reader.get(), place, length) == 0) {
            sender = core::UniqueFd(::accept4(listener.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
        }
    }
};

} // namespace

SendBufferRoom::SendBufferRoom(int fd, std::size_t bytes) : fd_(fd) {
    constexpr std::size_t always_fits = 1024;
    if (bytes <= always_fits) {
        return;
    }
    const int cause = errno;
    // Half of the buffer is data at the least, however small the pieces are that the peer lets through.
    const int wanted = static_cast<int>(std::min(bytes, largest_answer));
    const int before = size_of(fd);
    if (wanted > before / 2 && set_size(fd, wanted)) {
        size_before_ = before;
    }
    errno = cause;
}

SendBufferRoom::~SendBufferRoom() {
    if (size_before_ == 0) {
        return;
    }
    const int cause = errno;
    set_size(fd_, size_before_ / 2);
    const int tuned = 0;
    ::setsockopt(fd_, SOL_SOCKET, SO_BUF_LOCK, &tuned, sizeof(tuned)); // tuned by the kernel again
    errno = cause;
}

std::size_t unsent_bytes(int fd) {
    const int cause = errno;
    int bytes = 0;
    if (::ioctl(fd, SIOCOUTQNSD, &bytes) != 0) { // known to TCP alone
        ::ioctl(fd, SIOCOUTQ, &bytes);
    }
    errno = cause;
    return static_cast<std::size_t>(bytes);
}

void try_send_buffer(ILogger& logger) {
    const UnreadConnection connection;
    // Never written to: the kernel reads its one page of zeros again and again.
    const std::unique_ptr<void, decltype(&std::free)> zeros(std::calloc(largest_answer, 1), &std::free);
    if (!connection.sender || zeros == nullptr) {
        return;
    }
    const SendBufferRoom room(connection.sender.get(), largest_answer);
    const auto sent = ::send(connection.sender.get(), zeros.get(), largest_answer, MSG_NOSIGNAL);
    if (sent < static_cast<ssize_t>(largest_answer)) {
        log(logger, core::LogLevel::Warning,
            "Answers of more than {} KiB may be cut: the largest of a full plant need CAP_NET_ADMIN, or "
            "net.core.wmem_max = {}",
            std::max<ssize_t>(sent, 0) / 1024, largest_answer);
    }
    errno = 0;
}

} // namespace xpon::api_service
