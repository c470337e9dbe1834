#pragma once

#include <span>
#include <string>
#include <vector>

namespace xpon::simulator {

/// The command for the control socket that the words ask for:
///
///   fault KIND [TARGET] [value NUMBER] [for SECONDS]
///   clear KIND [TARGET]     clear all
///   step SECONDS
///   clock real | stepped | scaled FACTOR
///   state [all | summary]
///   faults
///   at SECONDS COMMAND...
///
/// A command that begins with "{" goes as it is. Throws std::runtime_error that names the word at fault. Whether
/// kinds, targets and values exist is for the simulator to say.
std::string command_of(std::span<const std::string> words);

/// The commands of a scenario: one a line, as above, without empty lines and those that begin with "#". Throws
/// std::runtime_error that names the line at fault.
std::vector<std::string> commands_of_scenario(const std::string& text);

} // namespace xpon::simulator
