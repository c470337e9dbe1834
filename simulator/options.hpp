#pragma once

#include "simulator/simulation/simulation.hpp"

#include <variant>

namespace xpon::simulator {

/// What the command line asks for, or the exit status with which the program ends at once: 0 after --help, 2 for a
/// bad command line, whose fault has been told on standard error.
std::variant<Options, int> parse_options(int count, const char* const* arguments);

} // namespace xpon::simulator
