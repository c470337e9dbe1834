#include "api_service/signals.hpp"

#include <csignal>
#include <utility>

namespace xpon::api_service {
namespace {

std::function<void()> stop_action;    // NOLINT(*-avoid-non-const-global-variables): all a signal handler can reach
std::function<void()> restart_action; // NOLINT(*-avoid-non-const-global-variables)

/// Keeps the three signals waiting, so that no handler meets a callable that is being exchanged.
class SignalsHeld {
public:
    SignalsHeld() {
        sigset_t held;
        sigemptyset(&held);
        for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
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

void exchange_actions(std::function<void()> stop, std::function<void()> restart) {
    const SignalsHeld held;
    stop_action = std::move(stop);
    restart_action = std::move(restart);
}

void handle_stop(int) {
    if (stop_action) {
        stop_action();
    }
}

void handle_restart(int) {
    if (restart_action) {
        restart_action();
    }
}

} // namespace

void install_signal_handlers() {
    std::signal(SIGTERM, handle_stop);
    std::signal(SIGINT, handle_stop);
    std::signal(SIGHUP, handle_restart);
}

SignalActions::SignalActions(std::function<void()> stop, std::function<void()> restart) {
    exchange_actions(std::move(stop), std::move(restart));
}

SignalActions::~SignalActions() {
    exchange_actions({}, {});
}

} // namespace xpon::api_service
