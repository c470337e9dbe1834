#include "simulator/stop_signals.hpp"

#include <csignal>
#include <initializer_list>

namespace xpon::simulator {
namespace {

volatile std::sig_atomic_t stop = 0;

} // namespace

void install_stop_signals() {
    struct sigaction action{};
    action.sa_handler = [](int) { stop = 1; };
    // Without SA_RESTART: the wait for requests ends at once.
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        sigaction(number, &action, nullptr);
    }
    std::signal(SIGPIPE, SIG_IGN);
}

bool stop_requested() {
    return stop != 0;
}

} // namespace xpon::simulator
