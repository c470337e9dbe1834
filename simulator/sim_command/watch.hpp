#pragma once

#include "simulator/sim_command/control_client.hpp"

#include <memory>
#include <optional>
#include <string>

namespace CLI { // NOLINT(readability-identifier-naming): the library chose it
class App;
}

namespace xpon::simulator {

/// What to watch.
struct WatchOrder {
    bool is_given = false;
    std::string kinds = "all";
    std::string target;
    std::optional<unsigned> count; ///< events, then it ends
};

/// Adds the verb watch, which fills `order`.
void add_watch_verb(CLI::App& app, WatchOrder& order);

/// Prints events as they happen, until the simulator ends or as many as ordered have happened. Throws
/// std::runtime_error for an order that the simulator refuses.
void watch(ControlClient& client, const WatchOrder& order, bool as_json);

} // namespace xpon::simulator
