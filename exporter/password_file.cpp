#include "exporter/password_file.hpp"

#include "xpon/core/unique_fd.hpp"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <system_error>

#include <sys/stat.h>

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

namespace xpon::exporter {
namespace {

constexpr std::size_t longest_password = 4096;

bool is_credential(const std::filesystem::path& path) {
    const char* folder = std::getenv("CREDENTIALS_DIRECTORY");
    return folder != nullptr && path.parent_path() == folder;
}

} // namespace

core::Result<std::string> read_password_file(const std::filesystem::path& path) {
    const auto refuse = [&](std::string_view what) {
        return core::ErrorPayload(core::Error::NoAccess, fmt::format("password file '{}' {}", path.string(), what));
    };
    const core::UniqueFd file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    struct stat status{};
    if (!file || fstat(file.get(), &status) != 0) {
        return refuse(fmt::format("cannot be read: {}", std::generic_category().message(errno)));
    }
    if (!S_ISREG(status.st_mode)) {
        return refuse("is no file");
    }
    if (!is_credential(path) && (status.st_uid != geteuid() || (status.st_mode & 077U) != 0)) {
        return refuse("can be read by others, or belongs to another user; give it to this one and chmod 600 it");
    }
    std::array<char, longest_password> buffer; // filled by read
    const auto count = read(file.get(), buffer.data(), buffer.size());
    if (count < 0) {
        return refuse(fmt::format("cannot be read: {}", std::generic_category().message(errno)));
    }
    std::string text(buffer.data(), static_cast<std::size_t>(count));
    return text.substr(0, text.find('\n'));
}

} // namespace xpon::exporter
