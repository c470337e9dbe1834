#include "simulator/sim_command/command_line.hpp"
#include "simulator/sim_command/control_client.hpp"
#include "simulator/sim_command/make_image.hpp"
#include "xpon/core/json_tree.hpp"

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr auto usage = R"(usage: olt_sim COMMAND

Commands the simulated OLT whose files are below the folder OLT_ROOT, and prints its answers as JSON.

  fault KIND [TARGET] [value NUMBER] [for SECONDS]   inject a fault; without "for": until it is cleared
  clear KIND [TARGET]                                clear it; "clear all" clears every one
  faults                                             the kinds of faults and what they take
  step SECONDS                                       move the plant's clock ahead
  clock real | stepped | scaled FACTOR               how the clock moves
  state [all | summary]                              what is true of the plant
  snapshot NAME                                      keep the plant, its time and faults as they are
  load NAME                                          go back to them; the configuration stays that of now
  at SECONDS COMMAND...                              the command, once so much of the plant's time has passed
  run FILE                                           the commands of a file, one a line; "#" begins a remark
  '{...}'                                            a command as the control socket takes it

  make-image [OPTIONS] FILE                          a firmware image for this OLT or, for trying what is refused,
                                                     for another one; needs no simulator; see make-image --help

Exit status: 0; 1 when a command is refused or no simulator answers; 2 for a bad command line.
)";

bool run(xpon::simulator::ControlClient& client, const std::string& command) {
    using xpon::core::JsonTree;
    const JsonTree answer(cJSON_Parse(client.ask(command).c_str()));
    const xpon::core::JsonText text(cJSON_Print(answer.get()));
    const auto* const error = cJSON_GetObjectItemCaseSensitive(answer.get(), "error");
    if (cJSON_IsString(error) != 0) {
        std::cerr << "olt_sim: " << error->valuestring << "\n";
        return false;
    }
    std::cout << (text ? text.get() : "") << "\n";
    return static_cast<bool>(text);
}

std::vector<std::string> read_scenario(const std::string& path) {
    std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    if (!file) {
        throw std::runtime_error(path + " cannot be read");
    }
    return xpon::simulator::commands_of_scenario(text.str());
}

} // namespace

int main(int count, char** arguments) {
    using namespace xpon::simulator;

    const std::vector<std::string> words(arguments + 1, arguments + count);
    if (words.empty() || words.front() == "--help") {
        (words.empty() ? std::cerr : std::cout) << usage;
        return words.empty() ? 2 : 0;
    }
    if (words.front() == "make-image") {
        return make_image_file(std::span(words).subspan(1));
    }
    std::vector<std::string> commands;
    try {
        const bool is_scenario = words.front() == "run" && words.size() == 2;
        commands = is_scenario ? read_scenario(words.at(1)) : std::vector{command_of(words)};
    } catch (const std::exception& error) {
        std::cerr << "olt_sim: " << error.what() << "\n";
        return 2;
    }
    try {
        ControlClient client;
        for (const auto& command : commands) {
            if (!run(client, command)) {
                return EXIT_FAILURE;
            }
        }
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cerr << "olt_sim: " << error.what() << "\n";
        return EXIT_FAILURE;
    }
}
