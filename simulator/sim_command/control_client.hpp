#pragma once

#include "xpon/core/unique_fd.hpp"

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

private:
    std::string path_;
    core::UniqueFd socket_;
    std::string received_;
};

} // namespace xpon::simulator
