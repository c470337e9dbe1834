#include "client/oltctl/commands/context.hpp"
#include "client/oltctl/commands/syntax.hpp"
#include "client/oltctl/failure.hpp"
#include "client/oltctl/output/progress.hpp"
#include "client/oltctl/output/terminal.hpp"
#include "client/oltctl/provisioning/provisioner.hpp"
#include "client/oltctl/text_file.hpp"

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

struct List {
    std::string file;
    bool keep_going = false;
};

void provision_one(Context& context, const Subscriber& subscriber) {
    const auto place = Provisioner(context.service()).provision(subscriber);
    print(context.as_json ? fmt::format("{{\"port\": {}, \"ont\": {}}}\n", place[0], place[1])
                          : fmt::format("ONT {}; `oltctl commit` puts it into force.\n", text_of(place)));
}

void provision_list(Context& context, const List& list) {
    const auto subscribers = parse_subscriber_list(read_text_file(list.file));
    Provisioner provisioner(context.service());
    std::string faults;
    std::size_t done = 0;
    std::size_t tried = 0;
    std::optional<ProgressBar> bar(std::in_place, "Configuring ONTs", subscribers.size());
    for (const auto& subscriber : subscribers) {
        bar->advance_to(tried++);
        try {
            provisioner.provision(subscriber);
            ++done;
        } catch (const Failure& failure) {
            if (failure.status() == ExitStatus::no_connection || failure.status() == ExitStatus::no_session) {
                throw Failure(failure.status(), fmt::format("{}\n{} of {} ONTs are in the candidate.", failure.what(),
                                                            done, subscribers.size()));
            }
            faults += fmt::format("\n{}: {}", subscriber.serial, failure.what());
        }
    }
    bar.reset();
    if (!faults.empty() && !list.keep_going) {
        provisioner.undo();
        done = 0;
    }
    print(context.as_json ? fmt::format("{{\"configured\": {}, \"of\": {}}}\n", done, subscribers.size())
                          : fmt::format("{} of {} ONTs configured; `oltctl commit` puts them into force.\n", done,
                                        subscribers.size()));
    if (!faults.empty()) {
        throw Failure(ExitStatus::refused,
                      fmt::format("{}{}",
                                  list.keep_going ? "These were left out:"
                                                  : "Nothing was configured (--keep-going leaves out what is wrong):",
                                  faults));
    }
}

} // namespace

void add_provision_command(CommandSyntax program, Context& context) {
    const auto parser = program.add_command("provision", "Configure new subscribers in the candidate");
    const auto ont = parser.add_command("ont", "An ONT with the services of a template");
    const auto words = std::make_shared<Subscriber>();
    ont.add_option("--port", words->port, "the PON port").required().positive();
    ont.add_option("--ont", words->ont, "its number there; else the first that is free").within(1, 256);
    ont.add_option("--serial", words->serial, "such as SIMUA0030011").required();
    ont.add_option("--template", words->ont_template, "name or number of an ONT template").required();
    ont.add_option("--description", words->description, "a text of your own");
    ont.does(context, [&context, words] { provision_one(context, *words); });

    const auto table = parser.add_command("list", "ONTs from a table (CSV), all or none");
    const auto list = std::make_shared<List>();
    table
        .add_option("FILE", list->file,
                    "with the columns port, serial, template, and ont, description if wanted; "
                    "- for standard input")
        .required()
        .type_name("");
    table.add_flag("--keep-going", list->keep_going, "leave out what is wrong instead of configuring none");
    table.does(context, [&context, list] { provision_list(context, *list); });
    parser.require_command();
}

} // namespace xpon::oltctl
