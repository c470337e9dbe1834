#include "client/oltctl/commands/context.hpp"
#include "client/oltctl/configuration/records.hpp"
#include "client/oltctl/failure.hpp"
#include "client/oltctl/output/terminal.hpp"
#include "client/oltctl/serial_number.hpp"

#include <memory>
#include <string>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

constexpr auto ont_path = "configuration.ZebGCfg.pon.ont";
constexpr auto template_path = "configuration.CommonGCfg.profiles.profiles_ont.ont_template";

struct Subscriber {
    unsigned port = 0;
    unsigned ont = 0; ///< 0: the first that is free
    std::string serial;
    std::string ont_template; ///< name or number
    std::string description;
};

/// The number of the template with that name or number. Failure when there is none.
unsigned template_number(ConfigurationAccess& access, const std::string& name) {
    const auto all = access.read_all(*find_element(template_path), "candidate");
    std::string names;
    for (const auto& [index, record] : all.records) {
        const auto defined = cell_text(value_at(record, "name"));
        if (!defined.empty() && (defined == name || fmt::format("{}", index[0]) == name)) {
            return index[0];
        }
        names += defined.empty() ? "" : fmt::format("\n  {} {}", index[0], defined);
    }
    throw Failure(ExitStatus::usage, fmt::format("There is no ONT template '{}'. These are there:{}", name, names));
}

/// Where the ONT goes. Failure when its serial or the place that was asked for is taken.
Index place_for(const Subscriber& subscriber, const Records& onts) {
    Index place{};
    for (const auto& [index, record] : onts) {
        const auto serial = serial_text(value_at(record, "serial"));
        if (serial == subscriber.serial) {
            throw Failure(ExitStatus::refused,
                          fmt::format("{} is configured already, as ONT {}.", serial, text_of(index)));
        }
        if (index[0] != subscriber.port || (subscriber.ont != 0 && index[1] != subscriber.ont)) {
            continue;
        }
        if (serial.empty() && place[0] == 0) {
            place = index;
        } else if (subscriber.ont != 0) {
            throw Failure(ExitStatus::refused, fmt::format("ONT {} is taken, by {}.", text_of(index), serial));
        }
    }
    if (place[0] == 0) {
        throw Failure(ExitStatus::refused, fmt::format("PON port {} has no such free ONT.", subscriber.port));
    }
    return place;
}

void provision(Context& context, Subscriber subscriber) {
    const core::JsonTree record(cJSON_CreateObject());
    auto serial = parse_serial(subscriber.serial);
    if (!serial) {
        throw Failure(ExitStatus::usage,
                      fmt::format("'{}' is no serial. Write SIMUA0030011 or 53494D55A0030011.", subscriber.serial));
    }
    subscriber.serial = serial_text(serial.get()); // in the one form in which serials are compared
    ConfigurationAccess access(context.service());
    const auto number = template_number(access, subscriber.ont_template);
    cJSON_AddItemToObject(record.get(), "serial", serial.release());
    cJSON_AddNumberToObject(record.get(), "ont_template", number);
    cJSON_AddStringToObject(record.get(), "description", subscriber.description.c_str());
    const auto& element = *find_element(ont_path);
    const auto place = place_for(subscriber, access.read_all(element, "candidate").records);
    access.write(element, {{place, record.get()}});
    print(context.as_json ? fmt::format("{{\"port\": {}, \"ont\": {}}}\n", place[0], place[1])
                          : fmt::format("ONT {}; `oltctl commit` puts it into force.\n", text_of(place)));
}

} // namespace

void add_provision_command(CLI::App& app, Context& context) {
    auto* const parser = app.add_subcommand("provision", "Configure a new subscriber");
    auto* const ont = parser->add_subcommand("ont", "An ONT with the services of a template");
    const auto words = std::make_shared<Subscriber>();
    ont->add_option("--port", words->port, "the PON port")->required()->check(CLI::Range(1, 16));
    ont->add_option("--ont", words->ont, "its number there; else the first that is free")->check(CLI::Range(1, 256));
    ont->add_option("--serial", words->serial, "such as SIMUA0030011")->required();
    ont->add_option("--template", words->ont_template, "name or number of an ONT template")->required();
    ont->add_option("--description", words->description, "a text of your own");
    ont->callback([&context, words] { context.action = [&context, words] { provision(context, *words); }; });
    parser->require_subcommand(1);
}

} // namespace xpon::oltctl
