#include "api_service/request_memory.hpp"
#include "api_service/signals.hpp"
#include "api_service/start_cycle.hpp"

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <sys/prctl.h>

namespace {

constexpr auto usage = R"(usage: api_service [--help | --version]

The daemon behind the web manager of an OLT: JSON over TCP, on 127.0.0.1 port 9999. It reads no options; its settings
are files, below the folder OLT_ROOT when that is set.
)";
constexpr int bad_usage = 2;

/// The exit status when there are arguments, none of which asks for a run.
int answer(std::string_view argument) {
    const bool is_version = argument == "--version";
    const bool is_bad = !is_version && argument != "--help";
    std::fputs(is_version ? "api_service " XPON_VERSION "\n" : usage, is_bad ? stderr : stdout);
    return is_bad ? bad_usage : EXIT_SUCCESS;
}

} // namespace

int main(int count, char** arguments) {
    using namespace xpon::api_service;

    if (count > 1) {
        return answer(arguments[1]);
    }
    ::prctl(PR_SET_DUMPABLE, 0); // passwords pass through its memory: neither core files nor tracers may see it
    ignore_signals();
    if constexpr (XPON_REQUEST_ARENA) {
        RequestMemory::use();
    }
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
