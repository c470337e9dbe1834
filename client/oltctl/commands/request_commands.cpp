#include "client/oltctl/commands/context.hpp"
#include "client/oltctl/commands/reading.hpp"
#include "client/oltctl/commands/syntax.hpp"
#include "client/oltctl/configuration/elements.hpp"
#include "client/oltctl/configuration/index_list.hpp"
#include "client/oltctl/failure.hpp"
#include "client/oltctl/output/terminal.hpp"
#include "client/oltctl/output/tree.hpp"

#include <memory>
#include <string>
#include <vector>

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

/// Records of the configuration below the index of each, so that one knows which is which.
void show_records(const cJSON* array, const std::vector<Index>& indices) {
    std::string text;
    const auto* record = array->child;
    for (const auto& index : indices) {
        if (record == nullptr) {
            break;
        }
        text += fmt::format("{}:\n{}", text_of(index), tree_of(record, 2));
        record = record->next;
    }
    print(text);
}

void get(Context& context, const Reading& words) {
    const auto request = request_for(context, words);
    const auto* const element = find_element(words.path);
    const auto answer = context.service().ask(request);
    if (!context.as_json && element != nullptr && element->depth() > 0 && request.indices.size() == element->depth()) {
        show_records(answer.data.get(), indices_of(request.indices));
    } else {
        context.show_object(answer.data.get());
    }
}

void send_raw(Context& context, const std::string& text) {
    const core::JsonTree tree(cJSON_Parse(text.c_str()));
    const auto member = [&](const char* key) { return cJSON_GetObjectItemCaseSensitive(tree.get(), key); };
    if (cJSON_IsString(member("path")) == 0 || cJSON_IsString(member("method")) == 0) {
        throw Failure(ExitStatus::usage, "A request is a JSON object with \"path\" and \"method\", such as "
                                         "'{\"path\": \"monitoring.system\", \"method\": \"get\"}'.");
    }
    client::Request request{.path = member("path")->valuestring, .method = member("method")->valuestring};
    const cJSON* index = nullptr;
    cJSON_ArrayForEach(index, member("indices")) {
        request.indices.push_back(cell_text(index));
    }
    if (cJSON_IsString(member("config_type")) != 0) {
        request.config_type = member("config_type")->valuestring;
    }
    request.data.reset(cJSON_DetachItemFromObjectCaseSensitive(tree.get(), "data"));
    const auto answer = context.service().text_of_answer_to(request);
    print(answer + "\n");
    const auto parsed = client::parse_answer(answer);
    if (!parsed || !parsed.value().is_good()) {
        throw Failure(ExitStatus::refused, "The request was refused.");
    }
}

} // namespace

void add_request_commands(CommandSyntax program, Context& context) {
    const auto parser = program.add_command("get", "What stands at a path: state, counters or configuration");
    const auto words = std::make_shared<Reading>();
    add_reading(parser, *words);
    parser.does(context, [&context, words] { get(context, *words); });

    const auto raw = program.add_command("raw", "Any request, as JSON; prints the answer as it comes");
    const auto text = std::make_shared<std::string>();
    raw.add_option("REQUEST", *text, "such as '{\"path\": \"monitoring.logs\", \"method\": \"get\"}'")
        .required()
        .type_name("");
    raw.does(context, [&context, text] { send_raw(context, *text); });
}

} // namespace xpon::oltctl
