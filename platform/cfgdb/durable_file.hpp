#pragma once

#include <string>
#include <string_view>

namespace xpon::cfgdb {

/// The file that `write_durably` keeps of the one it replaces.
std::string previous_file(const std::string& path);

/// Replaces the file `path` so that whatever happens, a power cut included, it is the old one or the new one and
/// whole. The old one is kept beside it. The folder is made when it is missing. Throws std::system_error.
void write_durably(const std::string& path, std::string_view text);

/// The whole file. Throws std::system_error; EFBIG for a file that is no configuration by its size.
std::string read_file(const std::string& path);

} // namespace xpon::cfgdb
