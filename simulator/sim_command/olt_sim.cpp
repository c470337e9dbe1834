#include "simulator/sim_command/olt_sim.hpp"

#include "simulator/sim_command/answer_text.hpp"
#include "simulator/sim_command/command_line.hpp"
#include "simulator/sim_command/control_client.hpp"
#include "simulator/sim_command/make_image.hpp"
#include "simulator/sim_command/scenario.hpp"
#include "simulator/sim_command/watch.hpp"
#include "xpon/core/json_tree.hpp"

#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace xpon::simulator {
namespace {

constexpr auto footer = R"(A command may also be '{...}', JSON as the control socket takes it.
Exit status: 0; 1 when a command is refused or no simulator answers; 2 for a bad command line;
3 when a condition of a scenario does not come true.)";

constexpr int bad_command_line = 2;
constexpr int condition_failed = 3;

/// Prints it. Throws std::runtime_error for a refusal.
void show(const std::string& text_of_answer, bool as_json) {
    const core::JsonTree answer(cJSON_Parse(text_of_answer.c_str()));
    const auto* const error = cJSON_GetObjectItemCaseSensitive(answer.get(), "error");
    if (cJSON_IsString(error) != 0) {
        throw std::runtime_error(error->valuestring);
    }
    // A dump of everything is for programs alone.
    if (as_json || cJSON_HasObjectItem(answer.get(), "pon_ports") != 0) {
        const core::JsonText text(cJSON_Print(answer.get()));
        std::cout << (text ? text.get() : "") << "\n";
    } else {
        std::cout << simulator::text_of_answer(answer.get());
    }
    std::cout.flush();
}

} // namespace

int run_olt_sim(const std::vector<std::string>& words) {
    std::vector<std::string> commands;
    CLI::App app("Commands the simulated OLT whose files are below the folder OLT_ROOT, and prints its answers.",
                 "olt_sim");
    bool as_json = false;
    app.add_flag("--json", as_json, "print answers as JSON");
    app.fallthrough(); // it may stand behind a verb, too
    app.set_version_flag("--version", "olt_sim " XPON_VERSION);
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    add_simulator_verbs(app, commands);
    std::string scenario;
    WatchOrder order;
    add_scenario_verb(app, scenario);
    add_watch_verb(app, order);
    add_make_image_verb(app);
    app.footer(footer); // not that of the verbs
    try {
        if (words.empty()) {
            std::cerr << app.help();
            return bad_command_line;
        }
        parse_words(app, words, commands);
        std::ifstream file(scenario);
        const auto steps = parse_scenario(file);
        if (commands.empty() && steps.empty() && !order.is_given) { // done without a simulator
            return EXIT_SUCCESS;
        }
        ControlClient client;
        const auto show_answer = [&](const std::string& answer) { show(answer, as_json); };
        for (const auto& command : commands) {
            show_answer(client.ask(command));
        }
        run_scenario(client, steps, show_answer);
        if (order.is_given) {
            watch(client, order, as_json);
        }
        return EXIT_SUCCESS;
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? EXIT_SUCCESS : bad_command_line;
    } catch (const Disappointment& error) {
        std::cerr << "olt_sim: " << error.what() << "\n";
        return condition_failed;
    } catch (const std::exception& error) {
        std::cerr << "olt_sim: " << error.what() << "\n";
        return EXIT_FAILURE;
    }
}

} // namespace xpon::simulator
