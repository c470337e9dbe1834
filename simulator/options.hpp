#pragma once

#include "simulator/plant/named_plants.hpp"

#include <variant>

namespace xpon::simulator {

struct Options {
    PlantSize size;
};

/// What the command line asks for, or the exit status with which the program ends at once: 0 after --help, 2 for a
/// bad command line, whose fault has been told on standard error.
std::variant<Options, int> parse_options(int count, const char* const* arguments);

} // namespace xpon::simulator
