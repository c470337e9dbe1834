#include "simulator/sim_command/make_image.hpp"

#include "simulator/firmware/image_maker.hpp"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <system_error>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace xpon::simulator {
namespace {

std::string complaint_about_version(const std::string& text) {
    const bool is_good = !text.empty() && text.size() <= longest_version &&
                         std::ranges::all_of(text, [](char letter) { return letter > ' ' && letter <= '~'; });
    return is_good ? "" : fmt::format("a version is 1 to {} printable letters without blanks", longest_version);
}

} // namespace

int make_image_file(std::span<const std::string> words) {
    constexpr unsigned mib = 1024 * 1024;
    std::string path;
    std::string version;
    unsigned size_mib = 1;
    std::uint32_t hardware = olt_hardware_id;
    auto built = static_cast<std::uint32_t>(std::time(nullptr));

    CLI::App app("Makes a firmware image that the simulated OLT takes. Copy it below OLT_ROOT, to firmware/, and name "
                 "it by its path there: /firmware/FILE.",
                 "olt_sim make-image");
    app.add_option("--version", version, "what the OLT says that it runs, such as 1.5.0.1")
        ->required()
        ->check(CLI::Validator(complaint_about_version, ""));
    app.add_option("--size-mib", size_mib, "size of the payload (default: 1)")
        ->check(CLI::Range(smallest_payload / mib, largest_payload / mib));
    app.add_option("--hardware-id", hardware,
                   fmt::format("the board it is for (default: {:#010x}, the simulated one)", olt_hardware_id));
    app.add_option("--built", built, "build time in seconds since 1970 (default: now)");
    app.add_option("FILE", path, "the file to write")->required();
    try {
        // CLI11 takes them from the back.
        app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    } catch (const CLI::ParseError& error) {
        return app.exit(error, std::cout, std::cerr) == 0 ? EXIT_SUCCESS : 2;
    }
    try {
        write_image(path, make_image(version, size_mib * mib, built, hardware));
    } catch (const std::system_error& fault) {
        std::cerr << "olt_sim: " << fault.what() << "\n";
        return EXIT_FAILURE;
    }
    std::cout << fmt::format("{}: firmware {}, {} MiB\n", path, version, size_mib);
    return EXIT_SUCCESS;
}

} // namespace xpon::simulator
