#pragma once

#include "simulator/plant/named_plants.hpp"
#include "simulator/plant/plant_time.hpp"

#include <cstdint>
#include <variant>

namespace xpon::simulator {

struct Options {
    const NamedPlant* plant = nullptr;
    PlantSize size;
    std::uint64_t seed = 1;
    PlantTime uptime{};                              ///< of the OLT when the simulation begins
    double clock_rate = 1;                           ///< 0: the clock is stepped
    PlantTime boot_time{20000};                      ///< how long a restart of the OLT takes
    std::chrono::milliseconds firmware_write_time{}; ///< how long an update blocks its caller, in real time
    bool applies_hostname = false;                   ///< the configured host name becomes that of the UTS namespace
};

/// What the command line asks for, or the exit status with which the program ends at once: 0 after --help, 2 for a
/// bad command line, whose fault has been told on standard error.
std::variant<Options, int> parse_options(int count, const char* const* arguments);

} // namespace xpon::simulator
