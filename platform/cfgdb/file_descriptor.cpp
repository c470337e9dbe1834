#include "cfgdb/file_descriptor.hpp"

#include <cerrno>
#include <chrono>
#include <system_error>

#include <sys/file.h>
#include <sys/stat.h>

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <unistd.h>

namespace xpon::cfgdb {
namespace {

constexpr mode_t file_mode = 0600;

} // namespace

void require_file_step(bool succeeded, const char* step, const std::string& path) {
    if (!succeeded) {
        throw std::system_error(errno, std::generic_category(), fmt::format("{} {}", step, path));
    }
}

FileDescriptor::FileDescriptor(const std::string& path, int flags)
    : path_(path), fd_(open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK, file_mode)) {
    require_file_step(fd_.get() >= 0, "open", path);
}

void FileDescriptor::require_regular() const {
    struct stat status{};
    require_file_step(fstat(fd_.get(), &status) == 0, "stat", path_);
    if (!S_ISREG(status.st_mode)) {
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        require_file_step(false, "This is no regular file:", path_);
    }
}

void FileDescriptor::sync() const {
    require_file_step(fsync(fd_.get()) == 0, "fsync", path_);
}

off_t FileDescriptor::size() const {
    struct stat status{};
    require_file_step(fstat(fd_.get(), &status) == 0, "stat", path_);
    return status.st_size;
}

void FileDescriptor::write_all(std::string_view text) const {
    while (!text.empty()) {
        const auto written = write(fd_.get(), text.data(), text.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        require_file_step(written > 0, "write", path_);
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

void FileDescriptor::read_all(std::string& text) const {
    std::size_t done = 0;
    while (done < text.size()) {
        const auto count = read(fd_.get(), text.data() + done, text.size() - done);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        require_file_step(count >= 0, "read", path_);
        if (count == 0) {
            break;
        }
        done += static_cast<std::size_t>(count);
    }
    text.resize(done);
}

void FileDescriptor::reserve(off_t bytes) const {
    errno = posix_fallocate(fd_.get(), 0, bytes);
    require_file_step(errno == 0, "posix_fallocate", path_);
}

void FileDescriptor::link_as(const std::string& name) const {
    const auto unnamed = fmt::format("/proc/self/fd/{}", fd_.get());
    require_file_step(linkat(AT_FDCWD, unnamed.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0, "link", name);
}

FolderLock::FolderLock(const std::string& folder, std::chrono::milliseconds limit)
    : FileDescriptor(folder + "/.lock", O_RDWR | O_CREAT) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (flock(fd(), LOCK_EX | LOCK_NB) != 0) {
        require_file_step(errno == EWOULDBLOCK || errno == EINTR, "flock", folder);
        if (std::chrono::steady_clock::now() > deadline) {
            errno = ETIMEDOUT;
            require_file_step(false, "Another process works in", folder);
        }
        poll(nullptr, 0, 5); // nothing tells that a lock is free but the lock
    }
}

} // namespace xpon::cfgdb
