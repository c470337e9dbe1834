#include "client/oltctl/commands/context.hpp"
#include "client/oltctl/commands/syntax.hpp"
#include "client/oltctl/configuration/authors.hpp"
#include "client/oltctl/configuration/difference.hpp"
#include "client/oltctl/configuration/document.hpp"
#include "client/oltctl/confirmation/guard.hpp"
#include "client/oltctl/failure.hpp"
#include "client/oltctl/output/terminal.hpp"

#include <chrono>
#include <iostream>
#include <memory>
#include <string_view>
#include <vector>

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

std::vector<DifferingRecords> all_differences(Context& context) {
    ConfigurationAccess access(context.service());
    return differing_records(context.service(), access);
}

void show(const Context& context, const std::vector<DifferingRecords>& records) {
    const auto found = differences(records);
    print(context.as_json ? json_of(found) : text_of(found));
}

struct Commit {
    bool dry_run = false;
    unsigned seconds_to_confirm = 0; ///< 0: it holds at once
};

/// Who may not write a record cannot bring its former value back.
void check_that_it_can_be_taken_back(Context& context, const std::vector<DifferingRecords>& changes) {
    for (const auto& change : changes) {
        const std::string_view writer(change.element->writer);
        if (context.service().session().privilege != "administrator" && writer == "administrator") {
            throw Failure(ExitStatus::refused,
                          fmt::format("You could not take this commit back: only an administrator writes {}.",
                                      change.element->path));
        }
    }
}

void commit_for_the_time_being(Context& context, const std::vector<DifferingRecords>& changes, unsigned seconds) {
    check_that_it_can_be_taken_back(context, changes);
    start_guard({.session = context.service().session(),
                 .deadline = std::chrono::steady_clock::now() + std::chrono::seconds(seconds),
                 .before = document_of(changes, &DifferingRecords::running),
                 .trouble = ""},
                std::chrono::seconds(context.patience_s));
    try {
        context.service().ask({.path = "command.commit", .method = "command"});
    } catch (const Failure& failure) {
        if (failure.status() == ExitStatus::refused) { // else it may have been made
            confirm(context.port);
        }
        throw;
    }
    std::cerr << fmt::format("In force for {} s, unless `oltctl confirm` keeps it for good.\n", seconds);
}

void commit(Context& context, const Commit& how) {
    const auto changes = all_differences(context);
    show(context, changes);
    if (how.dry_run) {
        return;
    }
    if (is_commit_unconfirmed(context.port)) {
        throw Failure(ExitStatus::refused, "The last commit waits to be confirmed: `oltctl confirm` keeps it, `oltctl "
                                           "confirm --restore` takes it back.");
    }
    if (changes.empty()) {
        std::cerr << "There is nothing to commit.\n";
        return;
    }
    // The candidate is everybody's: what was shown may be the work of others as well.
    std::cerr << text_of_other_authors(changes, context.service().session().id);
    if (a_person_is_there()) {
        context.confirm("Put this into force?");
    }
    if (how.seconds_to_confirm != 0) {
        commit_for_the_time_being(context, changes, how.seconds_to_confirm);
    } else {
        context.service().ask({.path = "command.commit", .method = "command"});
    }
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

void add_candidate_commands(CommandSyntax program, Context& context) {
    program.add_command("diff", "What a commit would change: running and candidate values, field by field")
        .does(context, [&context] { show(context, all_differences(context)); });

    const auto committer = program.add_command("commit", "Show what was edited and put it into force, all or nothing");
    const auto how = std::make_shared<Commit>();
    const auto dry_run = committer.add_flag("--dry-run", how->dry_run, "only show it");
    constexpr unsigned day = 86400;
    committer
        .add_option("--confirm", how->seconds_to_confirm,
                    "the configuration of before comes back after so many seconds, unless `oltctl confirm` was called")
        .type_name("SECONDS")
        .within(1U, day)
        .excludes(dry_run);
    committer.does(context, [&context, how] { commit(context, *how); });

    const auto confirmer = program.add_command("confirm", "Keep what `commit --confirm` has put into force");
    const auto take_back = std::make_shared<bool>(false);
    confirmer.add_flag("--restore", *take_back, "take it back instead, at once");
    confirmer.does(context, [&context, take_back] {
        if (*take_back) {
            restore_now(context.port, std::chrono::seconds(context.patience_s));
        } else {
            confirm(context.port);
        }
    });

    for (const auto& command : plain_commands) {
        program.add_command(command.name, command.meaning).does(context, [&context, &command] {
            if (command.needs_a_yes || (command.question != nullptr && a_person_is_there())) {
                context.confirm(command.question);
            }
            context.service().ask({.path = command.path, .method = "command"});
        });
    }
}

} // namespace xpon::oltctl
