#include "client/oltctl/commands/context.hpp"
#include "client/oltctl/commands/syntax.hpp"
#include "client/oltctl/configuration/assignment.hpp"
#include "client/oltctl/configuration/records.hpp"
#include "client/oltctl/failure.hpp"
#include "client/oltctl/text_file.hpp"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

struct Edit {
    std::string path;
    std::vector<std::string> words; ///< indices, then assignments
    std::string data;               ///< JSON, or @FILE
    bool patch = false;

    [[nodiscard]] std::vector<std::string> indices() const {
        return {words.begin(), std::ranges::find_if(words, is_assignment)};
    }
    [[nodiscard]] std::vector<std::string> assignments() const {
        return {std::ranges::find_if(words, is_assignment), words.end()};
    }
};

void assign_all(cJSON* record, const std::vector<std::string>& assignments) {
    for (const auto& assignment : assignments) {
        if (!is_assignment(assignment)) {
            throw Failure(ExitStatus::usage,
                          fmt::format("'{}' is no KEY=VALUE. Indices stand before the keys.", assignment));
        }
        assign(record, assignment);
    }
}

/// A record that is made of the words alone; keys that they leave out get their defaults.
core::JsonTree new_record(const Edit& words) {
    core::JsonTree record;
    if (words.data.empty()) {
        record.reset(cJSON_CreateObject());
    } else {
        const auto text = words.data.starts_with("@") ? read_text_file(words.data.substr(1)) : words.data;
        record.reset(cJSON_ParseWithOpts(text.c_str(), nullptr, 1));
        if (cJSON_IsObject(record.get()) == 0) {
            throw Failure(ExitStatus::usage, "--data takes a JSON object, or @FILE with one.");
        }
    }
    assign_all(record.get(), words.assignments());
    return record;
}

void patch(Context& context, const Edit& words) {
    const auto* const element = find_element(words.path);
    const auto lists = words.indices();
    if (element == nullptr || lists.size() != element->depth()) {
        throw Failure(ExitStatus::usage, element == nullptr
                                             ? fmt::format("'{}' is no element of the configuration.", words.path)
                                             : fmt::format("{} has {} indices.", words.path, element->depth()));
    }
    const auto answer =
        context.service().ask({.path = words.path, .method = "get", .indices = lists, .config_type = "candidate"});
    Records records;
    auto* record = lists.empty() ? answer.data.get() : answer.data->child;
    for (const auto& index : indices_of(lists)) {
        if (record == nullptr) {
            break;
        }
        assign_all(record, words.assignments());
        records.emplace(index, record);
        record = record->next;
    }
    ConfigurationAccess(context.service()).write(*element, records);
}

void set(Context& context, const Edit& words) {
    if (words.assignments().empty() && words.data.empty()) {
        throw Failure(ExitStatus::usage,
                      "Say what to set: KEY=VALUE ..., or --data. A set writes the whole record: keys "
                      "that are left out get their defaults; with --patch they stay.");
    }
    if (words.patch) {
        patch(context, words);
        return;
    }
    client::Request request{
        .path = words.path, .method = "set", .indices = words.indices(), .config_type = "candidate"};
    request.data = new_record(words);
    context.service().ask(request);
}

} // namespace

void add_edit_commands(CommandSyntax program, Context& context) {
    const auto setter =
        program.add_command("set", "Write a record of the candidate configuration, for each of the indices");
    const auto words = std::make_shared<Edit>();
    setter.add_option("PATH", words->path, "such as configuration.CommonGCfg.hostname").required().type_name("");
    setter.add_option("INDICES KEY=VALUE", words->words, "such as 1 1-8 description=\"House 7\"").type_name("");
    const auto data = setter.add_option("--data", words->data, "the record, in JSON, or @FILE with it");
    setter.add_flag("--patch", words->patch, "change these keys only; without it the others get their defaults")
        .excludes(data);
    setter.does(context, [&context, words] { set(context, *words); });

    const auto deleter = program.add_command("delete", "Give records of the candidate their initial state");
    const auto what = std::make_shared<Edit>();
    deleter.add_option("PATH", what->path, "such as configuration.ZebGCfg.pon.ont").required().type_name("");
    deleter.add_option("INDICES", what->words, "such as 1 1-8").type_name("");
    deleter.does(context, [&context, what] {
        context.service().ask(
            {.path = what->path, .method = "delete", .indices = what->words, .config_type = "candidate"});
    });
}

} // namespace xpon::oltctl
