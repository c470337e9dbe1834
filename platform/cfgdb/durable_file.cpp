#include "cfgdb/durable_file.hpp"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include <sys/file.h>
#include <sys/stat.h>

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

namespace xpon::cfgdb {
namespace {

constexpr mode_t file_mode = 0600; // it holds secrets, if in obfuscated form
constexpr off_t largest_file = off_t{64} << 20U;

void require(bool condition, const char* step, const std::string& path) {
    if (!condition) {
        throw std::system_error(errno, std::generic_category(), fmt::format("{} {}", step, path));
    }
}

class Descriptor {
public:
    Descriptor(const std::string& path, int flags)
        : path_(path), number_(open(path.c_str(), flags | O_CLOEXEC, file_mode)) {
        require(number_ >= 0, "open", path);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        close(number_);
    }

    void lock() const {
        require(flock(number_, LOCK_EX) == 0, "flock", path_);
    }
    void sync() const {
        require(fsync(number_) == 0, "fsync", path_);
    }
    [[nodiscard]] off_t size() const {
        struct stat status{};
        require(fstat(number_, &status) == 0, "stat", path_);
        return status.st_size;
    }

    void write_all(std::string_view text) const {
        while (!text.empty()) {
            const auto written = ::write(number_, text.data(), text.size());
            if (written < 0 && errno == EINTR) {
                continue;
            }
            require(written > 0, "write", path_);
            text.remove_prefix(static_cast<std::size_t>(written));
        }
    }

    void read_all(std::string& text) const {
        std::size_t done = 0;
        while (done < text.size()) {
            const auto count = ::read(number_, text.data() + done, text.size() - done);
            if (count < 0 && errno == EINTR) {
                continue;
            }
            require(count >= 0, "read", path_);
            if (count == 0) {
                break;
            }
            done += static_cast<std::size_t>(count);
        }
        text.resize(done);
    }

private:
    const std::string& path_;
    int number_;
};

/// A second name for the present file, or none: file systems without links lose only the copy.
void link_aside(const std::string& path, const std::string& aside) {
    unlink(aside.c_str());
    if (link(path.c_str(), aside.c_str()) != 0 && errno != ENOENT && errno != EPERM && errno != EOPNOTSUPP) {
        require(false, "link", path);
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
    const Descriptor folder_descriptor(folder, O_RDONLY | O_DIRECTORY);
    folder_descriptor.lock(); // one writer at a time: the names below are the same for all
    {
        const Descriptor file(fresh, O_WRONLY | O_CREAT | O_TRUNC);
        file.write_all(text);
        file.sync();
    }
    link_aside(path, aside);
    require(std::rename(fresh.c_str(), path.c_str()) == 0, "rename", fresh);
    // Only now: until here the previous file may have been the only good one.
    require(std::rename(aside.c_str(), previous_file(path).c_str()) == 0 || errno == ENOENT, "rename", aside);
    folder_descriptor.sync();
}

std::string read_file(const std::string& path) {
    const Descriptor file(path, O_RDONLY);
    const auto size = file.size();
    if (size > largest_file) {
        throw std::system_error(EFBIG, std::generic_category(), path);
    }
    std::string text(static_cast<std::size_t>(size), '\0');
    file.read_all(text);
    return text;
}

} // namespace xpon::cfgdb
