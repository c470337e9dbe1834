#include "simulator/options.hpp"
#include "simulator/simulator.hpp"
#include "simulator/stderr_logger.hpp"
#include "simulator/stop_signals.hpp"
#include "xpon/core/guard.hpp"

#include <cstdlib>
#include <iostream>

int main(int count, char** arguments) {
    using namespace xpon;

    simulator::install_stop_signals();
    const auto options = simulator::parse_options(count, arguments);
    if (const int* status = std::get_if<int>(&options)) {
        return *status;
    }
    const auto logger = std::make_shared<simulator::StderrLogger>();
    const auto result = core::guarded(
        *logger,
        [&] {
            return simulator::run(std::get<simulator::Options>(options), logger,
                                  [] { std::cout << "olt_simulator is ready" << std::endl; });
        },
        "{}");
    // An exception has been logged where it ended.
    if (!result && result.error().code != core::Error::Exception) {
        core::log_error(*logger, "{}", result.error().to_string());
    }
    return result ? EXIT_SUCCESS : EXIT_FAILURE;
}
