#include "cfgdb/durable_file.hpp"

#include "cfgdb/file_descriptor.hpp"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace xpon::cfgdb {
namespace {

constexpr off_t largest_file = off_t{64} << 20U;

/// A second name for the present file, or none: file systems without links lose only the copy.
void link_aside(const std::string& path, const std::string& aside) {
    unlink(aside.c_str());
    if (link(path.c_str(), aside.c_str()) != 0 && errno != ENOENT && errno != EPERM && errno != EOPNOTSUPP) {
        require_file_step(false, "link", path);
    }
}

} // namespace

std::string previous_file(const std::string& path) {
    return path + ".previous";
}

void write_durably(const std::string& path, std::string_view text) {
    const auto folder = std::filesystem::path(path).parent_path().string();
    const auto fresh = path + ".new";
    const auto aside = path + ".old";
    std::filesystem::create_directories(folder);
    const FileDescriptor folder_descriptor(folder, O_RDONLY | O_DIRECTORY);
    folder_descriptor.lock(); // one writer at a time: the names below are the same for all
    {
        const FileDescriptor file(fresh, O_WRONLY | O_CREAT | O_TRUNC);
        file.write_all(text);
        file.sync();
    }
    link_aside(path, aside);
    require_file_step(std::rename(fresh.c_str(), path.c_str()) == 0, "rename", fresh);
    // Only now: until here the previous file may have been the only good one.
    require_file_step(std::rename(aside.c_str(), previous_file(path).c_str()) == 0 || errno == ENOENT, "rename", aside);
    folder_descriptor.sync();
}

std::string read_file(const std::string& path) {
    const FileDescriptor file(path, O_RDONLY);
    const auto size = file.size();
    if (size > largest_file) {
        throw std::system_error(EFBIG, std::generic_category(), path);
    }
    std::string text(static_cast<std::size_t>(size), '\0');
    file.read_all(text);
    return text;
}

} // namespace xpon::cfgdb
