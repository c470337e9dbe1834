#include "client/oltctl/commands/context.hpp"
#include "client/oltctl/output/terminal.hpp"
#include "client/oltctl/shell/completion.hpp"
#include "client/oltctl/shell/man_page.hpp"
#include "client/oltctl/shell/shell.hpp"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

/// The options in front of the shell hold for each of its commands.
std::vector<std::string> options_of(const Context& context) {
    std::vector<std::string> options{fmt::format("--port-of-service={}", context.port),
                                     fmt::format("--timeout={}", context.patience_s)};
    if (context.as_json) {
        options.emplace_back("--json");
    }
    if (context.yes) {
        options.emplace_back("--yes");
    }
    return options;
}

} // namespace

void add_shell_commands(CLI::App& app, Context& context) {
    app.add_subcommand("shell", "Commands one after another, with history and completion; `exit` ends it")
        ->callback([&app, &context] {
            context.action = [&app, &context] {
                context.status =
                    run_shell(options_of(context), [&app](std::string_view line) { return completions(app, line); });
            };
        });

    // For the completion of bash and zsh, and for those who make packages: not among the commands of --help.
    auto* const complete = app.add_subcommand("complete", "What the last word of a command line may become");
    const auto line = std::make_shared<std::string>();
    complete->add_option("LINE", *line)->required();
    complete->group("")->callback([&app, &context, line] {
        context.action = [&app, line] {
            for (const auto& candidate : completions(app, *line)) {
                print(candidate + "\n");
            }
        };
    });
    app.add_subcommand("man-page", "The manual page")->group("")->callback([&app, &context] {
        context.action = [&app] { print(man_page(app)); };
    });
}

} // namespace xpon::oltctl
