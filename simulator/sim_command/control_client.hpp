#pragma once

#include "xpon/core/unique_fd.hpp"

#include <chrono>
#include <string>
#include <string_view>

namespace xpon::simulator {

/// A connection to the simulator of this OLT_ROOT.
class ControlClient {
public:
    /// Throws std::runtime_error, saying what to do, when there is no simulator.
    ControlClient();

    /// Sends one command and waits for its answer. Throws std::runtime_error when none comes.
    std::string ask(std::string_view command);
    /// What the simulator says next, unasked; waits for it as long as it takes. Empty when the simulator ends.
    std::string next_event();
    /// Waits so long, or until the simulator ends. Throws std::runtime_error then.
    void pause(std::chrono::milliseconds time);

private:
    /// A line that has come; waits for it. Empty when none comes.
    std::string receive_line();

    std::string path_;
    core::UniqueFd socket_;
    std::string received_;
};

} // namespace xpon::simulator
