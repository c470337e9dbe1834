#include "client/oltctl/session/private_file.hpp"

#include "client/oltctl/failure.hpp"
#include "xpon/core/unique_fd.hpp"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <string_view>
#include <system_error>

#include <sys/stat.h>

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

namespace xpon::oltctl {
namespace {

[[noreturn]] void fail(const std::filesystem::path& path, std::string_view what) {
    throw Failure(ExitStatus::usage, fmt::format("'{}' {}", path.string(), what));
}

[[noreturn]] void fail_with_errno(const std::filesystem::path& path, std::string_view what) {
    fail(path, fmt::format("{}: {}", what, std::generic_category().message(errno)));
}

bool write_all(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto written = write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) {
            return false;
        }
        bytes.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
    return true;
}

} // namespace

std::string read_private_file(const std::filesystem::path& path) {
    const core::UniqueFd file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    struct stat status{};
    if (!file || fstat(file.get(), &status) != 0) {
        fail_with_errno(path, "cannot be read");
    }
    if (!S_ISREG(status.st_mode)) {
        fail(path, "is no file.");
    }
    if (status.st_uid != geteuid() || (status.st_mode & 077U) != 0) {
        fail(path, fmt::format("can be read by others. Make it your own alone: chmod 600 '{}'", path.string()));
    }
    std::string content;
    std::array<char, 4096> buffer; // filled by read
    for (;;) {
        const auto count = read(file.get(), buffer.data(), buffer.size());
        if (count == 0) {
            return content;
        }
        if (count < 0 && errno != EINTR) {
            fail_with_errno(path, "cannot be read");
        }
        content.append(buffer.data(), count < 0 ? 0 : static_cast<std::size_t>(count));
    }
}

void write_private_file(const std::filesystem::path& path, const std::string& content) {
    std::string name = path.string() + ".XXXXXX";
    const core::UniqueFd file(mkostemp(name.data(), O_CLOEXEC)); // of mode 0600
    if (!file) {
        fail_with_errno(path, "cannot be written");
    }
    if (!write_all(file.get(), content) || rename(name.c_str(), path.c_str()) != 0) {
        const auto cause = errno;
        unlink(name.c_str());
        errno = cause;
        fail_with_errno(path, "cannot be written");
    }
}

} // namespace xpon::oltctl
