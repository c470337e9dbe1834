#include "api_service/signals.hpp"

#include <csignal>
#include <utility>

namespace xpon::api_service {
namespace {

std::function<void()> stop_action;    // NOLINT(*-avoid-non-const-global-variables): all a signal handler can reach
std::function<void()> restart_action; // NOLINT(*-avoid-non-const-global-variables)

constexpr int numbers[] = {SIGTERM, SIGINT, SIGHUP};

/// Keeps the three signals waiting, so that no handler meets a callable that is being exchanged.
class SignalsHeld {
public:
    SignalsHeld() {
        sigset_t held;
        sigemptyset(&held);
        for (const int number : numbers) {
            sigaddset(&held, number);
        }
        sigprocmask(SIG_BLOCK, &held, &before_);
    }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;
    ~SignalsHeld() {
        sigprocmask(SIG_SETMASK, &before_, nullptr);
    }

private:
    sigset_t before_{};
};

void handle_stop(int) {
    stop_action();
}

void handle_restart(int) {
    restart_action();
}

} // namespace

void ignore_signals() {
    for (const int number : numbers) {
        std::signal(number, SIG_IGN);
    }
}

SignalActions::SignalActions(std::function<void()> stop, std::function<void()> restart) {
    const SignalsHeld held;
    stop_action = std::move(stop);
    restart_action = std::move(restart);
    std::signal(SIGTERM, handle_stop);
    std::signal(SIGINT, handle_stop);
    std::signal(SIGHUP, handle_restart);
}

SignalActions::~SignalActions() {
    const SignalsHeld held;
    ignore_signals();
    stop_action = {};
    restart_action = {};
}

} // namespace xpon::api_service
