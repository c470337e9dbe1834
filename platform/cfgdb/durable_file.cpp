#include "cfgdb/durable_file.hpp"

#include "cfgdb/file_descriptor.hpp"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include <sys/stat.h>

#include <fcntl.h>
#include <unistd.h>

namespace xpon::cfgdb {
namespace {

constexpr off_t largest_file = off_t{64} << 20U;
constexpr mode_t folder_mode = 0700;

std::string folder_of(const std::string& path) {
    return std::filesystem::path(path).parent_path().string();
}
std::string fresh_file(const std::string& path) {
    return path + ".new";
}
std::string aside_file(const std::string& path) {
    return path + ".old";
}

void make_private_folder(const std::string& folder) {
    std::filesystem::create_directories(folder);
    struct stat status{};
    if (stat(folder.c_str(), &status) == 0 && (status.st_mode & 0077U) != 0) {
        chmod(folder.c_str(), folder_mode); // somebody else's folder stays as it is
    }
}

/// What stands in the way of a file is no leftover that may go.
void require_replaceable(const std::string& path) {
    struct stat status{};
    if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        require_file_step(false, "This is no regular file:", path);
    }
}

void remove_if_there(const std::string& path) {
    require_file_step(unlink(path.c_str()) == 0 || errno == ENOENT, "unlink", path);
}

/// Whether the file got a second name: not when there is none, nor on a file system without links.
bool link_aside(const std::string& path, const std::string& aside) {
    const bool is_linked = link(path.c_str(), aside.c_str()) == 0;
    require_file_step(is_linked || errno == ENOENT || errno == EPERM || errno == EOPNOTSUPP, "link", path);
    return is_linked;
}

/// Makes the file without a name until it is whole, so that a killed process leaves nothing. False where the system
/// does not offer that.
bool write_unnamed(const std::string& path, std::string_view text) {
    try {
        const FileDescriptor file(folder_of(path), O_TMPFILE | O_WRONLY);
        file.write_all(text);
        file.sync();
        file.link_as(path);
        return true;
    } catch (const std::system_error& fault) {
        const auto cause = fault.code().value();
        if (cause == EOPNOTSUPP || cause == EISDIR || cause == ENOENT) {
            return false;
        }
        throw;
    }
}

void write_fresh(const std::string& path, std::string_view text) {
    if (write_unnamed(path, text)) {
        return;
    }
    const FileDescriptor file(path, O_WRONLY | O_CREAT | O_EXCL);
    file.write_all(text);
    file.sync();
}

/// The names that exist only while a file is replaced.
class TemporaryNames {
public:
    /// Removes what a killed process left.
    explicit TemporaryNames(const std::string& path) : fresh(fresh_file(path)), aside(aside_file(path)) {
        remove_if_there(fresh);
        remove_if_there(aside);
    }
    TemporaryNames(const TemporaryNames&) = delete;
    TemporaryNames& operator=(const TemporaryNames&) = delete;
    ~TemporaryNames() {
        unlink(fresh.c_str());
        unlink(aside.c_str());
    }

    const std::string fresh;
    const std::string aside;
};

/// A file in a new place. Unless it stays there, what was there before comes back.
class Placement {
public:
    Placement(const std::string& path, const TemporaryNames& names)
        : path_(path), names_(names), is_first_(access(path.c_str(), F_OK) != 0),
          has_aside_(link_aside(path, names.aside)) {
        require_file_step(std::rename(names.fresh.c_str(), path.c_str()) == 0, "rename", names.fresh);
    }
    Placement(const Placement&) = delete;
    Placement& operator=(const Placement&) = delete;
    ~Placement() {
        if (is_final_) {
            return;
        }
        if (has_aside_) {
            std::rename(names_.aside.c_str(), path_.c_str());
        } else if (is_first_) {
            unlink(path_.c_str());
        }
    }

    void keep_replaced_file() const {
        if (has_aside_) {
            const auto previous = previous_file(path_);
            require_file_step(std::rename(names_.aside.c_str(), previous.c_str()) == 0, "rename", names_.aside);
        }
    }
    void stay() {
        is_final_ = true;
    }

private:
    const std::string& path_;
    const TemporaryNames& names_;
    bool is_first_;
    bool has_aside_;
    bool is_final_ = false;
};

} // namespace

std::string previous_file(const std::string& path) {
    return path + ".previous";
}

void write_durably(const std::string& path, std::string_view text, Replaced replaced) {
    const auto folder = folder_of(path);
    make_private_folder(folder);
    const FileDescriptor folder_descriptor(folder, O_RDONLY | O_DIRECTORY);
    const FolderLock lock(folder); // one writer at a time: the names below are the same for all
    require_replaceable(path);
    require_replaceable(previous_file(path));
    const TemporaryNames names(path);
    write_fresh(names.fresh, text);
    Placement placement(path, names);
    folder_descriptor.sync();
    // Only now: until here the previous file may have been the only good one.
    if (replaced == Replaced::kept) {
        placement.keep_replaced_file();
    }
    placement.stay();
}

void remove_leftovers(const std::string& path) {
    const FolderLock lock(folder_of(path));
    const TemporaryNames names(path);
}

bool keep_under_name(const std::string& path, const std::string& name) {
    const auto kept = folder_of(path) + "/" + name;
    if (link(path.c_str(), kept.c_str()) == 0) {
        return true;
    }
    if (errno == EPERM || errno == EOPNOTSUPP) {
        write_fresh(kept, read_file(path));
        return true;
    }
    require_file_step(errno == EEXIST, "link", path);
    return false;
}

std::string read_file(const std::string& path) {
    const FileDescriptor file(path, O_RDONLY);
    file.require_regular();
    const auto size = file.size();
    if (size > largest_file) {
        throw std::system_error(EFBIG, std::generic_category(), path);
    }
    std::string text(static_cast<std::size_t>(size), '\0');
    file.read_all(text);
    return text;
}

} // namespace xpon::cfgdb
