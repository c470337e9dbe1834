#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace xpon::oltctl {

using Completer = std::function<std::vector<std::string>(std::string_view line)>;

/// Reads command lines and runs each as a call of this program with `options` in front, until the end of the input or
/// `exit`. At a terminal lines can be edited, completed with Tab and called back; they are kept in a file of the user.
/// What the last command ended with.
int run_shell(const std::vector<std::string>& options, Completer completer);

} // namespace xpon::oltctl
