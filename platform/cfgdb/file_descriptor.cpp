#include "cfgdb/file_descriptor.hpp"

#include "cfgdb/attendant.hpp"

#include <cerrno>
#include <memory>
#include <system_error>

#include <sys/file.h>
#include <sys/stat.h>

#include <fcntl.h>
#include <fmt/format.h>
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
    : path_(path), fd_(open(path.c_str(), flags | O_CLOEXEC, file_mode)) {
    require_file_step(fd_.get() >= 0, "open", path);
}

void FileDescriptor::lock() const {
    if (flock(fd_.get(), LOCK_EX | LOCK_NB) == 0) {
        return;
    }
    require_file_step(errno == EWOULDBLOCK, "flock", path_);
    // The wait may outlive this object, and so has a descriptor of its own.
    const auto copy = std::make_shared<core::UniqueFd>(fcntl(fd_.get(), F_DUPFD_CLOEXEC, 0));
    require_file_step(copy->get() >= 0, "dup", path_);
    const auto fault = std::make_shared<int>(0);
    Attendant attendant;
    const bool in_time =
        attendant.run([=] { *fault = flock(copy->get(), LOCK_EX) == 0 ? 0 : errno; }, [] {}, patience_with_others);
    errno = in_time ? *fault : ETIMEDOUT;
    require_file_step(errno == 0, "flock", path_);
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

} // namespace xpon::cfgdb
