// Writes the reference of the API to the standard output: routes, configuration records and error texts, each from
// the table that the program works with.

#include "api_service/protocol/route_table.hpp"
#include "cfgdb/element.hpp"
#include "docs/field_text.hpp"
#include "xpon/error_texts/json_errors.hpp"

#include <algorithm>
#include <iostream>
#include <string_view>

#include <fmt/format.h>

namespace {

using namespace xpon;

constexpr std::string_view introduction = R"(# API reference

Made by `build/dev/docs/api_reference` from the program's own tables; do not edit. How a message looks is told in
[api.md](api.md).

)";

/// Indices of a route, counted from 1; empty for routes that are about no configuration element.
std::string describe_indices(const api_service::RouteRow& row) {
    const auto elements = cfgdb::all_elements();
    const auto element = std::ranges::find_if(
        elements, [&](const auto& known) { return row.path == std::string("configuration.") + known.path; });
    if (element == elements.end()) {
        return "";
    }
    if (!row.make_pre_hooks({}).empty()) {
        return element->depth == 1 ? "PON port, ONT" : fmt::format("PON port, ONT, 1 to {}", element->sizes[1]);
    }
    return element->depth == 0 ? "none" : fmt::format("1 to {}", element->sizes[0]);
}

void write_routes(std::ostream& out) {
    out << "## Routes\n\nA caller needs the privilege of the row or a higher one.\n\n"
           "| Path | Method | Privilege | Indices |\n|---|---|---|---|\n";
    for (const auto& row : api_service::route_table()) {
        out << fmt::format("| `{}` | `{}` | {} | {} |\n", row.path, row.method, to_string(row.privilege),
                           describe_indices(row));
    }
}

void write_fields(std::ostream& out, const serializer::Table& table, const std::string& prefix) {
    for (const auto& field : table.fields) {
        const auto key = prefix + field.key;
        const bool is_array = field.kind == serializer::Kind::array || field.kind == serializer::Kind::list;
        auto values = docs::describe_values(field);
        if (field.element != nullptr) {
            values += fmt::format(": {}, each by default {}", docs::describe_values(*field.element),
                                  docs::describe_default(*field.element));
        }
        out << fmt::format("| `{}` | {} | {} |\n", key, values, docs::describe_default(field));
        if (field.child != nullptr) {
            write_fields(out, *field.child, key + (is_array ? "[]." : "."));
        }
    }
}

void write_elements(std::ostream& out) {
    out << "\n## Configuration records\n";
    for (const auto& element : cfgdb::all_elements()) {
        out << fmt::format("\n### `configuration.{}`\n\n| Key | Values | Default |\n|---|---|---|\n", element.path);
        write_fields(out, element.table, "");
    }
}

void write_errors(std::ostream& out) {
    out << "\n## Error texts\n\n`{p0}` and so on stand for the parameters of the error.\n\n| Index | Text "
           "|\n|---|---|\n";
    constexpr unsigned more_than_enough = 256;
    for (unsigned index = 0; index < more_than_enough; ++index) {
        const char* text = nullptr;
        if (get_json_errors_from_index(static_cast<Json_errors>(index), &text) == 0) {
            out << fmt::format("| {} | {} |\n", index, text);
        }
    }
}

} // namespace

int main() {
    std::cout << introduction;
    write_routes(std::cout);
    write_elements(std::cout);
    write_errors(std::cout);
}
