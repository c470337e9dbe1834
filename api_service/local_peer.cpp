#include "api_service/local_peer.hpp"

#include "xpon/core/unique_fd.hpp"

#include <charconv>
#include <filesystem>
#include <string>
#include <system_error>

#include <sys/socket.h>

#include <fmt/format.h>
#include <linux/inet_diag.h>
#include <linux/netlink.h>
#include <linux/sock_diag.h>
#include <netinet/in.h>

namespace xpon::api_service {
namespace {

namespace fs = std::filesystem;

/// sock_diag(7): which socket has this address as its own and that one as its peer's?
struct Question {
    nlmsghdr header;
    inet_diag_req_v2 socket;
};

struct Answer {
    nlmsghdr header;
    inet_diag_msg socket;
};

using NameOf = int (*)(int, sockaddr*, socklen_t*);

std::optional<sockaddr_in> address_of(int connection, NameOf name_of) {
    sockaddr_storage address{};
    socklen_t size = sizeof(address);
    if (name_of(connection, reinterpret_cast<sockaddr*>(&address), &size) != 0 || address.ss_family != AF_INET) {
        return std::nullopt;
    }
    return reinterpret_cast<const sockaddr_in&>(address);
}

Question question_about(const sockaddr_in& own, const sockaddr_in& peer) {
    Question question{};
    question.header.nlmsg_len = sizeof(question);
    question.header.nlmsg_type = SOCK_DIAG_BY_FAMILY;
    question.header.nlmsg_flags = NLM_F_REQUEST;
    question.socket.sdiag_family = AF_INET;
    question.socket.sdiag_protocol = IPPROTO_TCP;
    question.socket.idiag_states = ~0U;
    auto& id = question.socket.id;
    id.idiag_sport = peer.sin_port;
    id.idiag_src[0] = peer.sin_addr.s_addr;
    id.idiag_dport = own.sin_port;
    id.idiag_dst[0] = own.sin_addr.s_addr;
    id.idiag_cookie[0] = INET_DIAG_NOCOOKIE;
    id.idiag_cookie[1] = INET_DIAG_NOCOOKIE;
    return question;
}

std::optional<pid_t> number_of(const fs::path& name) {
    const auto text = name.string();
    pid_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

bool holds(const fs::path& process, const std::string& socket) {
    std::error_code error;
    for (fs::directory_iterator fd(process / "fd", error), end; !error && fd != end; fd.increment(error)) {
        std::error_code gone;
        if (fs::read_symlink(fd->path(), gone) == socket) {
            return true;
        }
    }
    return false;
}

} // namespace

std::optional<LocalPeer> find_local_peer(int connection) {
    const auto own = address_of(connection, ::getsockname);
    const auto peer = address_of(connection, ::getpeername);
    const core::UniqueFd kernel(::socket(AF_NETLINK, SOCK_DGRAM | SOCK_CLOEXEC, NETLINK_SOCK_DIAG));
    if (!own || !peer || !kernel) {
        return std::nullopt;
    }
    const auto question = question_about(*own, *peer);
    if (::send(kernel.get(), &question, sizeof(question), MSG_DONTWAIT) != static_cast<ssize_t>(sizeof(question))) {
        return std::nullopt;
    }
    Answer answer{}; // attributes behind it are cut off
    const auto received = ::recv(kernel.get(), &answer, sizeof(answer), MSG_DONTWAIT);
    // A listener of the same port is what the kernel gives for want of a connection; a closed end has no inode.
    if (received != static_cast<ssize_t>(sizeof(answer)) || answer.header.nlmsg_type != SOCK_DIAG_BY_FAMILY ||
        answer.socket.id.idiag_dport != own->sin_port || answer.socket.idiag_inode == 0) {
        return std::nullopt;
    }
    return LocalPeer{.uid = answer.socket.idiag_uid, .inode = answer.socket.idiag_inode};
}

std::optional<pid_t> find_process_of(const LocalPeer& peer) {
    const auto socket = fmt::format("socket:[{}]", peer.inode);
    std::error_code error;
    for (fs::directory_iterator process("/proc", error), end; !error && process != end; process.increment(error)) {
        const auto pid = number_of(process->path().filename());
        if (pid && holds(process->path(), socket)) {
            return pid;
        }
    }
    return std::nullopt;
}

} // namespace xpon::api_service
