#pragma once

#include <string>
#include <vector>

namespace xpon::oltctl {

/// Runs a program with this one's terminal and waits for its end. Ctrl-C meanwhile is the program's alone. What the
/// program ended with; 128 and the number for a signal. Failure (usage) when it cannot be started.
int run_child(const std::vector<std::string>& command);

} // namespace xpon::oltctl
