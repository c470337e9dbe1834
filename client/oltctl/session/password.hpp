#pragma once

#include <optional>
#include <string>

namespace xpon::oltctl {

/// Where a password comes from; from the terminal when neither is given.
struct PasswordSource {
    std::optional<int> descriptor; ///< its first line
    std::string file;              ///< its first line; of mode 0600
};

/// Reads it. From the terminal it is read without echo, after `question`. Failure (usage) when there is no terminal to
/// ask at, or nothing to read.
std::string read_password(const PasswordSource& source, const std::string& question);

} // namespace xpon::oltctl
