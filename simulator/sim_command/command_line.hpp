#pragma once

#include <string>
#include <vector>

namespace CLI { // NOLINT(readability-identifier-naming): the library chose it
class App;
}

namespace xpon::simulator {

/// The commands that a command line asks for, as the control socket takes them.
using Commands = std::vector<std::string>;

/// Adds the verbs that the simulator carries out, each of which appends a command to `commands` once `app` has read it.
/// Whether kinds, targets and values exist is for the simulator to say.
void add_simulator_verbs(CLI::App& app, Commands& commands);
/// Adds "run FILE", which sets `file`.
void add_scenario_verb(CLI::App& app, std::string& file);

/// Lets `app` read the words: a verb and what belongs to it, or a command that begins with "{" and goes as it is.
/// Throws CLI::ParseError, a std::runtime_error that names the word at fault.
void parse_words(CLI::App& app, std::vector<std::string> words, Commands& commands);

/// The command of a simulator's verb. Throws CLI::ParseError.
std::string command_of(const std::vector<std::string>& words);

} // namespace xpon::simulator
