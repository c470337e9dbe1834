#include "gateway/access_log.hpp"

#include <cerrno>
#include <ctime>
#include <string_view>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <fmt/chrono.h>
#include <fmt/format.h>
#include <poll.h>
#include <unistd.h>

namespace xpon::gateway {
namespace {

constexpr std::size_t longest_field = 200;

/// What a client wrote must neither end the line nor look like another field.
std::string field(std::string_view text) {
    std::string shown;
    for (const char c : text.substr(0, longest_field)) {
        shown += c > ' ' && c < '\x7f' && c != '"' ? c : '?';
    }
    return shown.empty() ? "-" : shown;
}

core::UniqueFd open_log(const std::string& name) {
    return core::UniqueFd(open(name.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0640));
}

/// A pipe that is ready takes PIPE_BUF bytes at least without blocking (POSIX, poll and pipe), which is more than a
/// line.
bool is_ready(int descriptor) {
    pollfd entry{.fd = descriptor, .events = POLLOUT, .revents = 0};
    return poll(&entry, 1, 0) == 1 && (entry.revents & POLLOUT) != 0;
}

} // namespace

AccessLog::AccessLog(std::string file) : name_(std::move(file)) {
    if (!name_.empty()) {
        file_ = open_log(name_);
        if (!file_) {
            throw std::system_error(errno, std::generic_category(), "Cannot open the access log '" + name_ + "'");
        }
    }
}

void AccessLog::write(const HttpRequest& request, const HttpResponse& response, std::size_t bytes,
                      std::chrono::steady_clock::duration taken) {
    const auto line = fmt::format("{:%Y-%m-%dT%H:%M:%SZ} {} {} \"{} {}\" {} {} {} {:.1f}ms\n",
                                  fmt::gmtime(std::time(nullptr)), field(request.peer), field(response.user),
                                  field(request.method), field(request.path()), field(response.api_path),
                                  response.status, bytes, std::chrono::duration<double, std::milli>(taken).count());
    const int descriptor = file_ ? file_.get() : STDOUT_FILENO;
    const auto text = lost_ == 0 ? line : fmt::format("{} lines were lost\n{}", lost_, line);
    const bool is_written =
        is_ready(descriptor) && ::write(descriptor, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    lost_ = is_written ? 0 : lost_ + 1;
}

void AccessLog::reopen() {
    if (!name_.empty()) {
        if (auto fresh = open_log(name_)) {
            file_ = std::move(fresh);
        }
    }
}

} // namespace xpon::gateway
