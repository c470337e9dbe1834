#pragma once

#include "cfgdb/saved_configuration.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace xpon::cfgdb {

/// Where the configuration that a start begins with is saved.
std::string saved_file();

/// Whether there is a saved file, or the one before it.
bool saved_file_exists();

/// Puts a saved configuration in place of the one at `path`, which becomes the previous one if it is intact. A damaged
/// one does not: the previous file may be the only good one. Throws std::system_error; both files are as before then.
void replace_saved_file(const std::string& path, std::string_view text);

/// A saved file as a start reads it.
struct LoadedFile {
    std::optional<RecordList> records; ///< empty when the file cannot be used
    std::string fault;                 ///< why: "its checksum is wrong"; "" when there is no file
    std::string text;
};
LoadedFile load_saved_file(const std::string& path, StartReport& report);

/// Keeps a file that is not used as it is, under a name of its own beside it, and reports the name.
void keep_original(const std::string& path, std::string_view text, StartReport& report);

} // namespace xpon::cfgdb
