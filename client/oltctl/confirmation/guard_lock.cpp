#include "client/oltctl/confirmation/guard_lock.hpp"

#include "client/oltctl/failure.hpp"

#include <cerrno>
#include <system_error>
#include <utility>

#include <sys/stat.h>

#include <fcntl.h>
#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

flock whole_file() {
    flock lock{};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return lock;
}

} // namespace

GuardLock::GuardLock(std::filesystem::path path)
    : path_(std::move(path)), file_(open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600)) {
    if (!file_) {
        throw Failure(ExitStatus::usage,
                      fmt::format("'{}' cannot be opened: {}", path_.string(), std::generic_category().message(errno)));
    }
}

std::optional<pid_t> GuardLock::holder() const {
    auto lock = whole_file();
    if (fcntl(file_.get(), F_GETLK, &lock) != 0 || lock.l_type == F_UNLCK) {
        return std::nullopt;
    }
    return lock.l_pid;
}

bool GuardLock::take() const {
    auto lock = whole_file();
    return fcntl(file_.get(), F_SETLK, &lock) == 0;
}

void GuardLock::wait_and_take() const {
    auto lock = whole_file();
    while (fcntl(file_.get(), F_SETLKW, &lock) != 0 && errno == EINTR) {
    }
}

bool GuardLock::is_in_place() const {
    struct stat ours{};
    struct stat there{};
    return fstat(file_.get(), &ours) == 0 && stat(path_.c_str(), &there) == 0 && ours.st_dev == there.st_dev &&
           ours.st_ino == there.st_ino;
}

} // namespace xpon::oltctl
