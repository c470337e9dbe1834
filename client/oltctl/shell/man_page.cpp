#include "client/oltctl/shell/man_page.hpp"

#include <string_view>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

constexpr std::string_view beginning = R"(.\" Made by `oltctl man-page` from what --help tells; do not edit.
.TH OLTCTL 1
.SH NAME
oltctl \- shows and configures an OLT
.SH SYNOPSIS
.B oltctl
.I COMMAND
.RI [ OPTION ...]
.SH DESCRIPTION
)";

constexpr std::string_view end = R"(.SH ENVIRONMENT
.TP
.B XDG_RUNTIME_DIR
Folder of the file with the session, and of the commit that waits to be confirmed; /tmp/oltctl-UID without it.
.TP
.B XDG_STATE_HOME
Folder of texts that were edited and not written, and of the history of the shell; ~/.local/state without it.
.TP
.BR VISUAL ", " EDITOR
What `oltctl edit' starts.
.TP
.B NO_COLOR
No colours, whatever it is set to.
)";

/// A text whose signs have no meaning for roff.
std::string plain(std::string_view text) {
    std::string escaped;
    for (const char letter : text) {
        const bool begins_line = escaped.empty() || escaped.back() == '\n';
        if (begins_line && (letter == '.' || letter == '\'')) {
            escaped += "\\&";
        }
        escaped += letter == '\\' ? "\\e" : letter == '-' ? "\\-" : std::string(1, letter);
    }
    return escaped;
}

std::string options_of(const CLI::App& app) {
    std::string text;
    for (const auto* option : app.get_options()) {
        if (option->get_group().empty()) {
            continue;
        }
        const bool takes_value = !option->get_positional() && option->get_items_expected_max() > 0;
        auto name = option->get_positional() ? option->get_name(true) : option->get_name(false, true);
        std::string takes = takes_value ? " " + option->get_type_name() : "";
        const auto initial = option->get_default_str();
        text += fmt::format(".TP\n.B {}{}\n{}{}\n", plain(name), plain(takes), plain(option->get_description()),
                            initial.empty() ? "" : fmt::format(" (default {})", plain(initial)));
    }
    return text;
}

std::string commands_of(const CLI::App& app, const std::string& before) {
    std::string text;
    for (const auto* command : app.get_subcommands([](const CLI::App*) { return true; })) {
        if (command->get_group().empty()) {
            continue;
        }
        const auto name = before + command->get_name();
        text += fmt::format(".SS {}\n{}.\n{}", plain(name), plain(command->get_description()), options_of(*command));
        text += commands_of(*command, name + " ");
    }
    return text;
}

} // namespace

std::string man_page(const CLI::App& app) {
    return fmt::format("{}{}\n{}\n.SH OPTIONS\nThey may stand behind the command, too.\n{}.SH COMMANDS\n{}{}",
                       beginning, plain(app.get_description()), plain(app.get_footer()), options_of(app),
                       commands_of(app, ""), end);
}

} // namespace xpon::oltctl
