#include "api_service/send_buffer.hpp"

#include <fstream>

#include <sys/socket.h>

namespace xpon::api_service {
namespace {

// The kernel doubles the number for its bookkeeping; one send then takes twice this size. Memory is used only while
// an answer of that size is on its way.
constexpr int wanted_bytes = 32 * 1024 * 1024;

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

} // namespace

void enlarge_send_buffer(int fd) {
    if (::setsockopt(fd, SOL_SOCKET, SO_SNDBUFFORCE, &wanted_bytes, sizeof(wanted_bytes)) == 0) {
        return;
    }
    // A size set by hand switches the tuning off, so it must be worth it.
    static const bool worth_it = 2 * plain_limit() > tuning_limit();
    if (worth_it) {
        ::setsockopt(fd, SOL_SOCKET, SO_SNDBUF, &wanted_bytes, sizeof(wanted_bytes));
    }
}

} // namespace xpon::api_service
