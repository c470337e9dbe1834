#pragma once

#include "xpon/core/unique_fd.hpp"

#include <chrono>
#include <string>
#include <string_view>

#include <sys/types.h>

namespace xpon::cfgdb {

/// Throws std::system_error with errno and "STEP PATH" unless the step succeeded.
void require_file_step(bool succeeded, const char* step, const std::string& path);

/// An open file or folder. Files that it makes are for their owner alone: they hold secrets, if in obfuscated form.
/// Opening never waits, whatever stands in a file's place. Every call throws std::system_error.
class FileDescriptor {
public:
    FileDescriptor(const std::string& path, int flags);

    /// Throws EISDIR for a folder and EINVAL for anything else that holds no bytes of its own.
    void require_regular() const;
    void sync() const;
    [[nodiscard]] off_t size() const;
    void write_all(std::string_view text) const;
    /// Fills `text`, or makes it shorter at the end of the file.
    void read_all(std::string& text) const;
    /// Takes the room for so many bytes now, so that nothing mapped lacks it later. The file gets no shorter.
    void reserve(off_t bytes) const;
    /// Gives a name to a file that was opened with O_TMPFILE.
    void link_as(const std::string& name) const;

protected:
    [[nodiscard]] int fd() const {
        return fd_.get();
    }

private:
    std::string path_;
    core::UniqueFd fd_;
};

/// The lock of a folder's contents, in a file of its own that nobody else may open. Held while the object lives; the
/// end of a process gives it back.
class FolderLock : private FileDescriptor {
public:
    /// Waits for the process that holds it, but no longer than `limit`: throws std::system_error ETIMEDOUT then.
    explicit FolderLock(const std::string& folder, std::chrono::milliseconds limit = std::chrono::milliseconds(500));
};

} // namespace xpon::cfgdb
