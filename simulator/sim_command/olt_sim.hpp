#pragma once

#include <string>
#include <vector>

namespace xpon::simulator {

/// The whole program; `words` is its command line without its name. Returns its exit status. Here and not in main.cpp,
/// so that the library of command lines is compiled once for all that reads them.
int run_olt_sim(const std::vector<std::string>& words);

} // namespace xpon::simulator
