#include "api_service/client_socket.hpp"

#include "api_service/auth/secret_wiping.hpp"
#include "api_service/send_buffer.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include <sys/socket.h>
#include <sys/uio.h>

#include <fmt/format.h>

namespace xpon::api_service {
namespace {

// Answers up to this size altogether wait in the kernel at no great cost; asking whether they do takes a system call.
constexpr std::size_t answers_not_asked_about = 16 * 1024; // bytes

// Less than that is copied sooner than the kernel collects it from two places.
constexpr std::size_t small_answer = 1024; // bytes

/// Millions of frames of one byte take mostly what surrounds them.
std::size_t memory_of(const std::string& frame) {
    return sizeof(std::string) + frame.size();
}

/// Appends, and leaves no copy behind in memory that is outgrown.
void append(std::string& secret, std::string_view more) {
    const auto size = secret.size() + more.size();
    if (size > secret.capacity()) {
        std::string outgrown = std::exchange(secret, {});
        const WipeAtExit wipe(outgrown);
        secret.reserve(std::max(size, 2 * outgrown.size()));
        secret = outgrown;
    }
    secret += more;
}

/// A request line is METHOD TARGET HTTP/VERSION (RFC 9112, 3). No JSON text has a blank behind a word of that kind.
bool begins_like_http(std::string_view frame) {
    const auto line = frame.substr(0, frame.find_first_of("\r\n"));
    const auto method = line.substr(0, line.find(' '));
    return line.find(" HTTP/", method.size()) != std::string_view::npos &&
           method.find_first_of("{[\"") == std::string_view::npos;
}

ssize_t send_with_nul(int fd, const void* text, std::size_t size) {
    if (size < small_answer) {
        std::array<char, small_answer> whole; // NOLINT(*-member-init): filled as far as it is sent
        std::copy_n(static_cast<const char*>(text), size, whole.data());
        whole[size] = '\0';
        return ::send(fd, whole.data(), size + 1, MSG_NOSIGNAL);
    }
    char nul = '\0';
    std::array parts{iovec{.iov_base = const_cast<void*>(text), .iov_len = size},
                     iovec{.iov_base = &nul, .iov_len = 1}};
    msghdr message{};
    message.msg_iov = parts.data();
    message.msg_iovlen = parts.size();
    return ::sendmsg(fd, &message, MSG_NOSIGNAL);
}

} // namespace

ClientSocket::ClientSocket(core::UniqueFd fd) : fd_(std::move(fd)) {}

ClientSocket::~ClientSocket() {
    drop_received();
}

std::int64_t ClientSocket::get_frames_left() const {
    return static_cast<std::int64_t>(frames_.size());
}

Result<std::string> ClientSocket::get_frame() {
    auto frame = std::move(frames_.front());
    frames_.pop();
    frames_bytes_ -= memory_of(frame);
    return frame;
}

Result<void> ClientSocket::send_frame(std::string_view payload) {
    const auto wanted = payload.size() + 1;
    errno = 0;
    const auto sent = send_in_one_piece(payload);
    const int cause = std::exchange(errno, 0);
    answered_ += sent;
    if (speaks_http_) {
        shut_down();
    }
    if (sent == wanted) {
        return core::success();
    }
    // Whatever came behind half an answer would be taken for its rest.
    if (sent > 0 || cause != EAGAIN) {
        shut_down();
    }
    return ErrorPayload(Error::CommonError, fmt::format("{} of {} bytes were sent, errno={}", sent, wanted, cause));
}

std::size_t ClientSocket::send_in_one_piece(std::string_view payload) {
    const SendBufferRoom room(get_fd(), payload.size() + 1);
    nul_ = Nul::follows;
    const auto sent = static_cast<std::size_t>(std::max<ssize_t>(do_send(payload.data(), payload.size()), 0));
    const bool is_complete = sent == payload.size() && do_send("", 1) == 1;
    nul_ = Nul::none;
    return is_complete ? sent + 1 : sent;
}

bool ClientSocket::takes_requests() {
    if (answered_ > answers_not_asked_about && unsent_bytes(get_fd()) == 0) {
        answered_ = 0;
    }
    return answered_ <= answers_not_asked_about || is_shut_down_; // reading is what shows that it is to be closed
}

void ClientSocket::drop_received() {
    const WipeAtExit wipe(partial_);
    for (; !frames_.empty(); frames_.pop()) {
        const WipeAtExit wipe_frame(frames_.front());
    }
    frames_bytes_ = 0;
}

void ClientSocket::shut_down() {
    is_shut_down_ = true;
    drop_received();
    ::shutdown(get_fd(), SHUT_RDWR);
    errno = 0;
}

std::size_t ClientSocket::get_bytes_waiting() const {
    return partial_.capacity() + frames_bytes_;
}

bool ClientSocket::is_shut_down() const {
    return is_shut_down_;
}

int ClientSocket::get_fd() const {
    return fd_.get();
}

Result<void> ClientSocket::read_data() {
    if (is_shut_down_) {
        return ErrorPayload(Error::CommonError); // what has arrived meanwhile is of no more use
    }
    std::array<char, get_buffer_size()> buffer; // NOLINT(*-member-init): filled by do_recv
    const ssize_t count = do_recv(buffer.data(), buffer.size());
    const int cause = std::exchange(errno, 0);
    if (count < 0 && (cause == EAGAIN || cause == EINTR)) {
        return core::success();
    }
    if (count <= 0) {
        return ErrorPayload(Error::CommonError);
    }
    cut_frames({buffer.data(), static_cast<std::size_t>(count)});
    explicit_bzero(buffer.data(), static_cast<std::size_t>(count));
    if (!frames_.empty() && frames_bytes_ - memory_of(frames_.front()) > waiting_frames_budget) {
        return ErrorPayload(Error::Overflow, fmt::format("{} requests wait, {} bytes", frames_.size(), frames_bytes_));
    }
    return core::success();
}

void ClientSocket::cut_frames(std::string_view received) {
    for (auto end = received.find('\0'); end != std::string_view::npos && !speaks_http_; end = received.find('\0')) {
        append(partial_, received.substr(0, end));
        if (!partial_.empty()) {
            speaks_http_ = !std::exchange(has_had_a_frame_, true) && begins_like_http(partial_);
            frames_bytes_ += memory_of(partial_);
            frames_.push(std::exchange(partial_, {}));
        }
        received.remove_prefix(end + 1);
    }
    append(partial_, received);
}

ssize_t ClientSocket::do_send(const void* data, std::size_t size) {
    if (nul_ == Nul::has_left) {
        return 1;
    }
    if (nul_ == Nul::none) {
        return ::send(get_fd(), data, size, MSG_NOSIGNAL);
    }
    // The NUL leaves together with the text: by itself it is a system call more, and maybe a segment and a wake-up of
    // the peer. Without room for it there, its own turn tries again.
    const ssize_t sent = send_with_nul(get_fd(), data, size);
    const bool is_whole = sent == static_cast<ssize_t>(size) + 1;
    nul_ = is_whole ? Nul::has_left : Nul::none;
    return is_whole ? sent - 1 : sent;
}

ssize_t ClientSocket::do_recv(void* data, std::size_t size) {
    return ::recv(get_fd(), data, size, MSG_DONTWAIT);
}

} // namespace xpon::api_service
