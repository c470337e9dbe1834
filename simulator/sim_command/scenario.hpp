#pragma once

#include "simulator/sim_command/control_client.hpp"

#include <functional>
#include <istream>
#include <stdexcept>
#include <string>
#include <vector>

namespace xpon::simulator {

/// What is asked of a part of the plant's state.
struct Condition {
    enum class Comparison { is, is_not, at_least, at_most };

    std::string question; ///< the command whose answer has the field
    std::string field;    ///< names with dots in between; a field that is not there counts as "" and 0
    Comparison comparison = Comparison::is;
    std::string value;
};

struct ScenarioStep {
    enum class Kind { command, wait_until, expect, repeat };

    Kind kind;
    unsigned line;         ///< in the file, from 1
    std::string text;      ///< of that line
    std::string command{}; ///< with `command`
    Condition condition{}; ///< with `wait_until` and `expect`
    double limit_s = 0;    ///< of the plant's time, with `wait_until`
    std::string message{}; ///< with `expect`
    unsigned count = 0;    ///< with `repeat`
    std::vector<ScenarioStep> body{};
};

/// A scenario, one step a line:
///
///   COMMAND                                         as a command line of olt_sim, or {...}
///   wait-until CONDITION within SECONDS             a stepped clock is moved
///   expect CONDITION [else MESSAGE...]
///   repeat COUNT ... end                            the lines in between
///
/// CONDITION is summary FIELD, ont PLACE FIELD or pon PORT FIELD, and then is, is-not, at-least or at-most VALUE. Empty
/// lines, and those that begin with "#", do nothing. Throws CLI::ParseError that names the line at fault.
std::vector<ScenarioStep> parse_scenario(std::istream& lines);

/// A condition that did not come true.
class Disappointment : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Carries out the steps; `show` gets each answer to a command. Throws Disappointment, and std::runtime_error for a
/// command that is refused.
void run_scenario(ControlClient& client, const std::vector<ScenarioStep>& steps,
                  const std::function<void(const std::string& answer)>& show);

} // namespace xpon::simulator
