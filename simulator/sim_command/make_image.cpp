#include "simulator/sim_command/make_image.hpp"

#include "simulator/firmware/image_maker.hpp"

#include <algorithm>
#include <ctime>
#include <iostream>
#include <memory>
#include <string>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace xpon::simulator {
namespace {

constexpr unsigned mib = 1024 * 1024;

struct Order {
    std::string path;
    std::string version;
    unsigned size_mib = 1;
    std::uint32_t hardware = olt_hardware_id;
    std::uint32_t built = static_cast<std::uint32_t>(std::time(nullptr)); ///< seconds since 1970
};

std::string complaint_about_version(const std::string& text) {
    const bool is_good = !text.empty() && text.size() <= longest_version &&
                         std::ranges::all_of(text, [](char letter) { return letter > ' ' && letter <= '~'; });
    return is_good ? "" : fmt::format("a version is 1 to {} printable letters without blanks", longest_version);
}

} // namespace

void add_make_image_verb(CLI::App& app) {
    auto* verb = app.add_subcommand("make-image", "Make a firmware image for this OLT or, for trying what is refused, "
                                                  "for another one; needs no simulator");
    verb->footer("Copy the image below OLT_ROOT, to firmware/, and name it by its path there: /firmware/FILE.");
    const auto order = std::make_shared<Order>();
    verb->add_option("--version", order->version, "what the OLT says that it runs, such as 1.5.0.1")
        ->required()
        ->check(CLI::Validator(complaint_about_version, ""));
    verb->add_option("--size-mib", order->size_mib, "size of the payload (default: 1)")
        ->check(CLI::Range(smallest_payload / mib, largest_payload / mib));
    verb->add_option("--hardware-id", order->hardware,
                     fmt::format("the board it is for (default: {:#010x}, the simulated one)", olt_hardware_id));
    verb->add_option("--built", order->built, "build time in seconds since 1970 (default: now)");
    verb->add_option("FILE", order->path, "the file to write")->required();
    verb->callback([order] {
        write_image(order->path, make_image(order->version, order->size_mib * mib, order->built, order->hardware));
        std::cout << fmt::format("{}: firmware {}, {} MiB\n", order->path, order->version, order->size_mib);
    });
}

} // namespace xpon::simulator
