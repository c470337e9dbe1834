#include "client/oltctl/commands/context.hpp"
#include "client/oltctl/configuration/difference.hpp"
#include "client/oltctl/output/terminal.hpp"

#include <iostream>
#include <memory>
#include <vector>

#include <CLI/CLI.hpp>

namespace xpon::oltctl {
namespace {

std::vector<FieldDifference> all_differences(Context& context) {
    ConfigurationAccess access(context.service());
    return differences(context.service(), access);
}

void show(const Context& context, const std::vector<FieldDifference>& found) {
    print(context.as_json ? json_of(found) : text_of(found));
}

void commit(Context& context, bool dry_run) {
    const auto found = all_differences(context);
    show(context, found);
    if (dry_run) {
        return;
    }
    if (found.empty()) {
        std::cerr << "There is nothing to commit.\n";
        return;
    }
    if (a_person_is_there()) { // the candidate is everybody's: what was shown may be the work of others as well
        context.confirm("Put this into force? It may hold what others have edited.");
    }
    context.service().ask({.path = "command.commit", .method = "command"});
}

/// A command of the service that takes nothing.
struct PlainCommand {
    const char* name;
    const char* meaning;
    const char* path;
    const char* question;     ///< null: it is done without one
    bool needs_a_yes = false; ///< else the question is left out when nobody is there
};

constexpr PlainCommand plain_commands[] = {
    {"rollback", "Drop what was edited: the candidate becomes what runs", "command.rollback",
     "Drop all that was edited, also by others?"},
    {"save", "Keep what runs for the next start", "command.save", nullptr},
    {"default", "Make the candidate the factory configuration; nothing runs of it before a commit", "command.default",
     "Replace the candidate by the factory configuration?"},
    {"reboot", "Reboot the OLT into its saved configuration", "command.reboot",
     "Reboot the OLT? All subscribers lose their service for some minutes.", true},
};

} // namespace

void add_candidate_commands(CLI::App& app, Context& context) {
    app.add_subcommand("diff", "What a commit would change: running and candidate values, field by field")
        ->callback([&context] { context.action = [&context] { show(context, all_differences(context)); }; });

    auto* const committer = app.add_subcommand("commit", "Show what was edited and put it into force, all or nothing");
    const auto dry_run = std::make_shared<bool>(false);
    committer->add_flag("--dry-run", *dry_run, "only show it");
    committer->callback([&context, dry_run] { context.action = [&context, dry_run] { commit(context, *dry_run); }; });

    for (const auto& command : plain_commands) {
        app.add_subcommand(command.name, command.meaning)->callback([&context, &command] {
            context.action = [&context, &command] {
                if (command.needs_a_yes || (command.question != nullptr && a_person_is_there())) {
                    context.confirm(command.question);
                }
                context.service().ask({.path = command.path, .method = "command"});
            };
        });
    }
}

} // namespace xpon::oltctl
