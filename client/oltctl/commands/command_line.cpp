#include "client/oltctl/commands/command_line.hpp"

#include "client/oltctl/commands/context.hpp"
#include "client/oltctl/commands/syntax.hpp"
#include "client/oltctl/failure.hpp"

#include <exception>
#include <iostream>
#include <string>

#include <CLI/CLI.hpp>

namespace xpon::oltctl {
namespace {

constexpr auto footer =
    R"(Changes go to the candidate configuration; `oltctl diff` shows them, `oltctl commit` puts them into force.
Exit status: 0; 1 refused by the service; 2 bad command line; 3 not logged in or session expired; 4 no connection.)";

int status_of(ExitStatus status) {
    return static_cast<int>(status);
}

} // namespace

int run_command_line(int count, char** arguments, const std::string& version) {
    Context context;
    CLI::App app("Shows and configures the OLT through api_service.", "oltctl");
    app.add_flag("--json", context.as_json, "print JSON, for programs");
    app.add_flag("-y,--yes", context.yes, "do not ask");
    app.add_option("--port-of-service", context.port, "where api_service listens, on 127.0.0.1")->capture_default_str();
    app.add_option("--timeout", context.patience_s, "seconds to wait for an answer")
        ->check(CLI::Range(1, 3600))
        ->capture_default_str();
    app.set_version_flag("--version", "oltctl " + version);
    app.fallthrough(); // options may stand behind the command, too
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    for (const auto add : {add_session_commands, add_status_commands, add_ont_commands, add_live_commands,
                           add_device_commands, add_provision_command, add_request_commands, add_edit_commands,
                           add_editor_command, add_candidate_commands, add_document_commands, add_shell_commands}) {
        add(CommandSyntax(app), context);
    }
    app.require_subcommand(1);
    app.footer(footer);
    try {
        app.parse(count, arguments);
        context.action();
        return context.status;
    } catch (const CLI::RequiredError& error) {
        const auto words = app.remaining();
        std::cerr << (words.empty() || !app.get_subcommands().empty() ? std::string(error.what())
                                                                      : "There is no command '" + words.front() + "'.")
                  << "\nRun with --help for more information.\n";
        return status_of(ExitStatus::usage);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? status_of(ExitStatus::done) : status_of(ExitStatus::usage);
    } catch (const Failure& failure) {
        std::cerr << "oltctl: " << failure.what() << "\n";
        return status_of(failure.status());
    } catch (const std::exception& error) {
        std::cerr << "oltctl: " << error.what() << "\n";
        return status_of(ExitStatus::refused);
    }
}

} // namespace xpon::oltctl
