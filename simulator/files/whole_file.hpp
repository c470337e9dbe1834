#pragma once

#include <filesystem>
#include <functional>
#include <string_view>

namespace xpon::simulator {

/// Replaces the file `path`: who reads it finds the one before or the new one, and whole. Throws std::system_error.
void replace_file(const std::filesystem::path& path, std::string_view contents);
/// The same; `write` makes the new one under another name.
void replace_file(const std::filesystem::path& path,
                  const std::function<void(const std::filesystem::path& unfinished)>& write);

} // namespace xpon::simulator
