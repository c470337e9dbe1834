#pragma once

#include <string>

namespace xpon::oltctl {

/// Does what the command line says. The status that the program ends with.
int run_command_line(int count, char** arguments, const std::string& version);

} // namespace xpon::oltctl
