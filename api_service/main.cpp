#include "api_service/signals.hpp"
#include "api_service/start_cycle.hpp"

#include <cstdlib>

int main() {
    using namespace xpon::api_service;

    install_signal_handlers();
    for (;;) {
        switch (StartCycle().run()) {
        case CycleEnd::restart:
            break;
        case CycleEnd::stopped:
            return EXIT_SUCCESS;
        case CycleEnd::failed:
            return EXIT_FAILURE;
        }
    }
}
