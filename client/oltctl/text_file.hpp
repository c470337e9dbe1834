#pragma once

#include <string>

namespace xpon::oltctl {

/// The whole of a file, of standard input for "-". Failure (usage) when it cannot be read.
std::string read_text_file(const std::string& path);

} // namespace xpon::oltctl
