#include "simulator/options.hpp"
#include "simulator/simulator.hpp"
#include "simulator/stop_signals.hpp"
#include "xpon/core/guard.hpp"

#include <cstdio>
#include <cstdlib>
#include <iostream>

#include <systemd/sd-daemon.h>

namespace {

/// Warnings and errors as "olt_simulator: TEXT" on standard error.
class StderrLogger : public xpon::core::ILogger {
public:
    [[nodiscard]] bool is_enabled(xpon::core::LogLevel level) const override {
        return level >= xpon::core::LogLevel::Warning;
    }
    void write(xpon::core::LogLevel, std::string_view text, const std::source_location&) override {
        fmt::print(stderr, "olt_simulator: {}\n", text);
    }
};

} // namespace

int main(int count, char** arguments) {
    using namespace xpon;

    simulator::install_stop_signals();
    const auto options = simulator::parse_options(count, arguments);
    if (const int* status = std::get_if<int>(&options)) {
        return *status;
    }
    const auto logger = std::make_shared<StderrLogger>();
    const auto result = core::guarded(
        *logger,
        [&] {
            return simulator::run(std::get<simulator::Options>(options), logger, [] {
                std::cout << "olt_simulator is ready" << std::endl;
                ::sd_notify(0, "READY=1"); // for a service manager; without one it does nothing
            });
        },
        "{}");
    // An exception has been logged where it ended.
    if (!result && result.error().code != core::Error::Exception) {
        core::log_error(*logger, "{}", result.error().to_string());
    }
    return result ? EXIT_SUCCESS : EXIT_FAILURE;
}
