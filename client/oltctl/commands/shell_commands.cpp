#include "client/oltctl/commands/context.hpp"
#include "client/oltctl/commands/syntax.hpp"
#include "client/oltctl/output/terminal.hpp"
#include "client/oltctl/shell/completion.hpp"
#include "client/oltctl/shell/man_page.hpp"
#include "client/oltctl/shell/shell.hpp"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

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

void add_shell_commands(CommandSyntax program, Context& context) {
    const auto& app = program.app();
    program.add_command("shell", "Commands one after another, with history and completion; `exit` ends it")
        .does(context, [&app, &context] {
            context.status =
                run_shell(options_of(context), [&app](std::string_view line) { return completions(app, line); });
        });

    // For the completion of bash and zsh, and for those who make packages: not among the commands of --help.
    const auto complete = program.add_command("complete", "What the last word of a command line may become");
    const auto line = std::make_shared<std::string>();
    complete.add_option("LINE", *line).required();
    complete.hide().does(context, [&app, line] {
        for (const auto& candidate : completions(app, *line)) {
            print(candidate + "\n");
        }
    });
    program.add_command("man-page", "The manual page").hide().does(context, [&app] { print(man_page(app)); });
}

} // namespace xpon::oltctl
