#include "simulator/sim_command/answer_text.hpp"
#include "simulator/sim_command/command_line.hpp"
#include "simulator/sim_command/control_client.hpp"
#include "simulator/sim_command/make_image.hpp"
#include "xpon/core/json_tree.hpp"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace {

using namespace xpon;

constexpr auto footer = R"(A command may also be '{...}', JSON as the control socket takes it.
Exit status: 0; 1 when a command is refused or no simulator answers; 2 for a bad command line.)";

constexpr int bad_command_line = 2;

bool is_done(simulator::ControlClient& client, const std::string& command, bool as_json) {
    const core::JsonTree answer(cJSON_Parse(client.ask(command).c_str()));
    const auto* const error = cJSON_GetObjectItemCaseSensitive(answer.get(), "error");
    if (cJSON_IsString(error) != 0) {
        std::cerr << "olt_sim: " << error->valuestring << "\n";
        return false;
    }
    // A dump of everything is for programs alone.
    if (as_json || cJSON_HasObjectItem(answer.get(), "pon_ports") != 0) {
        const core::JsonText text(cJSON_Print(answer.get()));
        std::cout << (text ? text.get() : "") << "\n";
    } else {
        std::cout << simulator::text_of_answer(answer.get());
    }
    return answer != nullptr && std::cout.flush();
}

} // namespace

int main(int count, char** arguments) {
    const std::vector<std::string> words(arguments + 1, arguments + count);
    std::vector<std::string> commands;
    CLI::App app("Commands the simulated OLT whose files are below the folder OLT_ROOT, and prints its answers.",
                 "olt_sim");
    bool as_json = false;
    app.add_flag("--json", as_json, "print answers as JSON");
    app.fallthrough(); // it may stand behind a verb, too
    app.set_version_flag("--version", "olt_sim " XPON_VERSION);
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    simulator::add_simulator_verbs(app, commands);
    simulator::add_scenario_verb(app, commands);
    simulator::add_make_image_verb(app);
    app.footer(footer); // not that of the verbs
    try {
        if (words.empty()) {
            std::cerr << app.help();
            return bad_command_line;
        }
        simulator::parse_words(app, words, commands);
        if (commands.empty()) { // done without a simulator
            return EXIT_SUCCESS;
        }
        simulator::ControlClient client;
        const bool all_done =
            std::ranges::all_of(commands, [&](const auto& command) { return is_done(client, command, as_json); });
        return all_done ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? EXIT_SUCCESS : bad_command_line;
    } catch (const std::exception& error) {
        std::cerr << "olt_sim: " << error.what() << "\n";
        return EXIT_FAILURE;
    }
}
