#pragma once

#include <functional>

namespace xpon::api_service {

/// SIGTERM and SIGINT call the stop callable, SIGHUP the restart callable; without one they do nothing.
void install_signal_handlers();

/// Sets what the signals do, for the life of this object. The callables run inside a signal handler. One at a time.
class SignalActions {
public:
    SignalActions(std::function<void()> stop, std::function<void()> restart);
    SignalActions(const SignalActions&) = delete;
    SignalActions& operator=(const SignalActions&) = delete;
    ~SignalActions();
};

} // namespace xpon::api_service
