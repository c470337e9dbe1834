#pragma once

#include <string>
#include <string_view>

namespace xpon::cfgdb {

/// The file that `write_durably` keeps of the one it replaces.
std::string previous_file(const std::string& path);

/// What becomes of the file that is replaced.
enum class Replaced {
    kept, ///< as the previous file, in place of the one before it
    lost, ///< the previous file stays what it is
};

/// Replaces the file `path` so that whatever happens, a power cut included, it is the old one or the new one and
/// whole. The folder is made when it is missing, and is for its owner alone. After a failure both files are what they
/// were. Throws std::system_error; ETIMEDOUT when another process holds the folder's lock, EINVAL or EISDIR for a path
/// that names no regular file.
void write_durably(const std::string& path, std::string_view text, Replaced replaced);

/// Removes what a killed `write_durably` left. Throws as `write_durably` does.
void remove_leftovers(const std::string& path);

/// Gives the file a second name, `name` in its folder, that no save replaces; false when it has that name already.
/// Where the file system has no links the file is copied. Throws std::system_error.
bool keep_under_name(const std::string& path, const std::string& name);

/// The whole file. Throws std::system_error; EFBIG for a file that is no configuration by its size, EINVAL or EISDIR
/// for a path that names no regular file.
std::string read_file(const std::string& path);

} // namespace xpon::cfgdb
