#include "simulator/options.hpp"

#include "simulator/plant/ont_layout.hpp"
#include "simulator/plant/plant_clock.hpp"
#include "simulator/plants/named_plants.hpp"
#include "simulator/plants/plant_reader.hpp"

#include <iostream>
#include <memory>
#include <optional>
#include <ranges>
#include <stdexcept>
#include <string>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace xpon::simulator {
namespace {

/// The plant of that name, else the one that the file describes.
std::shared_ptr<const PlantDescription> plant_of(const std::string& name) {
    if (const auto* const named = find_plant(name)) {
        return {std::shared_ptr<const PlantDescription>{}, named}; // lives as long as the program
    }
    try {
        return std::make_shared<const PlantDescription>(read_plant_file(name));
    } catch (const std::runtime_error& error) {
        throw CLI::ValidationError("--plant", error.what());
    }
}

PlantSize size_of(const PlantDescription& plant, std::optional<unsigned> onts, std::optional<unsigned> configured) {
    const auto size = onts ? PlantSize{.onts = *onts, .configured = 0} : plant.size();
    return {.onts = size.onts, .configured = configured.value_or(size.configured)};
}

} // namespace

std::variant<Options, int> parse_options(int count, const char* const* arguments) {
    std::string plant(default_plant);
    std::optional<unsigned> onts;
    std::optional<unsigned> configured;
    std::uint64_t seed = Options{}.seed;
    double rate = Options{}.clock_rate;
    std::optional<std::uint32_t> uptime_s;
    bool applies_hostname = false;
    std::uint32_t boot_s = 20;
    std::uint32_t firmware_write_s = 0;
    constexpr std::uint32_t longest_s = 600;

    CLI::App app("Plays the peer daemons of an OLT whose files are below the folder OLT_ROOT.", "olt_simulator");
    app.set_version_flag("--version", "olt_simulator " XPON_VERSION);
    const auto names = named_plants() | std::views::transform(&PlantDescription::name);
    app.add_option("--plant", plant,
                   fmt::format("the plant to simulate: {}, or a file that describes one (default: {})",
                               fmt::join(names, ", "), default_plant));
    app.add_option("--onts", onts, "physical ONTs, spread over the PON ports; instead of the plant's number")
        ->check(CLI::Range(0U, max_onts));
    app.add_option("--configured", configured, "how many of them a fresh OLT_ROOT already has configured")
        ->check(CLI::Range(0U, max_onts));
    app.add_option("--seed", seed, "which plant of its kind; the same seed gives the same plant (default: 1)");
    app.add_option("--clock-rate", rate, "how many times faster than real time; 0: the clock is stepped (default: 1)")
        ->check(CLI::Range(0.0, PlantClock::largest_rate));
    app.add_option("--uptime", uptime_s, "seconds that the OLT has been running; 0: its ONTs have yet to start");
    app.add_flag("--apply-hostname", applies_hostname,
                 "make the configured host name that of the UTS namespace, which must not be the machine's");
    app.add_option("--boot-s", boot_s, "seconds of the plant's time that a restart of the OLT takes (default: 20)")
        ->check(CLI::Range(0U, longest_s));
    app.add_option("--firmware-write-s", firmware_write_s,
                   "seconds of real time that a firmware update blocks its caller (default: 0)")
        ->check(CLI::Range(0U, longest_s));
    try {
        app.parse(count, arguments);
        const auto described = plant_of(plant);
        const auto size = size_of(*described, onts, configured);
        if (size.configured > size.onts) {
            throw CLI::ValidationError(
                "--configured", fmt::format("{} is more than the {} ONTs of the plant", size.configured, size.onts));
        }
        return Options{.plant = described,
                       .size = size,
                       .seed = seed,
                       .uptime = uptime_s ? std::chrono::seconds(*uptime_s) : described->uptime,
                       .clock_rate = rate,
                       .boot_time = std::chrono::seconds(boot_s),
                       .firmware_write_time = std::chrono::seconds(firmware_write_s),
                       .applies_hostname = applies_hostname};
    } catch (const CLI::ParseError& error) {
        return app.exit(error, std::cout, std::cerr) == 0 ? 0 : 2;
    }
}

} // namespace xpon::simulator
