#pragma once

#include <functional>

namespace xpon::api_service {

/// Has SIGTERM, SIGINT and SIGHUP do nothing at all while there are no SignalActions: a signal with a handler, even one
/// that does nothing, makes the system calls of a start fail with EINTR.
void ignore_signals();

/// SIGTERM and SIGINT call the stop callable, SIGHUP the restart callable, for the life of this object. The callables
/// run inside a signal handler. One object at a time.
class SignalActions {
public:
    SignalActions(std::function<void()> stop, std::function<void()> restart);
    SignalActions(const SignalActions&) = delete;
    SignalActions& operator=(const SignalActions&) = delete;
    ~SignalActions();
};

} // namespace xpon::api_service
