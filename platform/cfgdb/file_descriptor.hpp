#pragma once

#include "xpon/core/unique_fd.hpp"

#include <string>
#include <string_view>

#include <sys/types.h>

namespace xpon::cfgdb {

/// Throws std::system_error with errno and "STEP PATH" unless the step succeeded.
void require_file_step(bool succeeded, const char* step, const std::string& path);

/// An open file or folder. Files that it makes are for their owner alone: they hold secrets, if in obfuscated form.
/// Every call throws std::system_error.
class FileDescriptor {
public:
    FileDescriptor(const std::string& path, int flags);

    /// Waits until no other descriptor holds the lock, but not for ever: ETIMEDOUT. Closing gives it back, as does the
    /// end of the process.
    void lock() const;
    void sync() const;
    [[nodiscard]] off_t size() const;
    void write_all(std::string_view text) const;
    /// Fills `text`, or makes it shorter at the end of the file.
    void read_all(std::string& text) const;

private:
    std::string path_;
    core::UniqueFd fd_;
};

} // namespace xpon::cfgdb
