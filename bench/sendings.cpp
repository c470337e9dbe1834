#include "bench/sendings.hpp"

#include <array>
#include <cstddef>
#include <stdexcept>

#include <sys/socket.h>
#include <sys/uio.h>

#include <netinet/in.h>
#include <netinet/tcp.h>

namespace xpon::bench {
namespace {

// An answer of this size leaves as one segment or as a few, none of which waits for an acknowledgement.
constexpr std::size_t small_answer = 16 * 1024; // bytes

/// The sockets block. What cannot be sent because the client is gone shows at the next recv().
void send_bytes(int fd, std::string_view bytes, int flags = 0) {
    while (!bytes.empty()) {
        const auto sent = ::send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL | flags);
        if (sent <= 0) {
            return;
        }
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
}

std::string_view nul_behind(std::string_view text) {
    return {text.data() + text.size(), 1};
}

void send_at_once(int fd, std::string_view text) {
    send_bytes(fd, {text.data(), text.size() + 1});
}

void send_text_and_nul(int fd, std::string_view text) {
    send_bytes(fd, text);
    send_bytes(fd, nul_behind(text));
}

void send_corked(int fd, std::string_view text) {
    set_tcp_option(fd, TCP_CORK, 1);
    send_text_and_nul(fd, text);
    set_tcp_option(fd, TCP_CORK, 0);
}

void send_with_more(int fd, std::string_view text) {
    send_bytes(fd, text, MSG_MORE);
    send_bytes(fd, nul_behind(text));
}

/// NODELAY pushes what is left of a large answer before its NUL is there to join it.
void send_with_more_pushed(int fd, std::string_view text) {
    const bool is_small = text.size() < small_answer;
    send_bytes(fd, text, MSG_MORE);
    if (!is_small) {
        set_tcp_option(fd, TCP_NODELAY, 1);
    }
    send_bytes(fd, nul_behind(text));
    if (!is_small) {
        set_tcp_option(fd, TCP_NODELAY, 0);
    }
}

/// From two places in memory.
void send_gathered(int fd, std::string_view text) {
    const auto nul = nul_behind(text);
    std::array parts{iovec{.iov_base = const_cast<char*>(text.data()), .iov_len = text.size()},
                     iovec{.iov_base = const_cast<char*>(nul.data()), .iov_len = nul.size()}};
    msghdr message{};
    message.msg_iov = parts.data();
    message.msg_iovlen = parts.size();
    const auto sent = ::sendmsg(fd, &message, MSG_NOSIGNAL);
    if (sent > 0) { // the rest of a text that found no room
        send_bytes(fd, {text.data() + sent, text.size() + 1 - static_cast<std::size_t>(sent)});
    }
}

constexpr Sending sendings[] = {
    {.name = "one", .no_delay = true, .send = send_at_once},
    {.name = "two", .no_delay = true, .send = send_text_and_nul},
    {.name = "gathered", .no_delay = true, .send = send_gathered},
    {.name = "cork", .no_delay = true, .send = send_corked},
    {.name = "more", .no_delay = false, .send = send_with_more},
    {.name = "more-nodelay", .no_delay = true, .send = send_with_more},
    {.name = "more-pushed", .no_delay = false, .send = send_with_more_pushed},
};

} // namespace

const Sending& find_sending(std::string_view name) {
    for (const auto& sending : sendings) {
        if (sending.name == name) {
            return sending;
        }
    }
    throw std::invalid_argument("unknown way of sending");
}

void set_tcp_option(int fd, int option, int on) {
    ::setsockopt(fd, IPPROTO_TCP, option, &on, sizeof(on));
}

} // namespace xpon::bench
