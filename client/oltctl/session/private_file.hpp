#pragma once

#include <filesystem>
#include <string>

namespace xpon::oltctl {

/// The content of a file that only its owner, the caller, can read. Failure (usage) when it cannot be read, or when
/// others could read or could have written it.
std::string read_private_file(const std::filesystem::path& path);
/// Writes a file of mode 0600 under another name and gives it its own then. Failure (usage) with the cause.
void write_private_file(const std::filesystem::path& path, const std::string& content);

} // namespace xpon::oltctl
