// Writes the reference of the API to the standard output: routes and error texts, each from the table that the program
// works with.

#include "docs/routes.hpp"
#include "xpon/error_texts/json_errors.hpp"

#include <iostream>
#include <string_view>

#include <fmt/format.h>

namespace {

using namespace xpon;

constexpr std::string_view introduction = R"(# API reference

Made by `build/dev/docs/api_reference` from the program's own tables; do not edit. How a message looks is told in
[api.md](api.md); the elements of the configuration, with their methods, are in [data-model.md](data-model.md#elements).

)";

void write_routes(std::ostream& out) {
    out << "## Routes\n\nA caller needs the privilege of the row or a higher one.\n\n"
           "| Path | Method | Privilege |\n|---|---|---|\n";
    for (const auto& row : api_service::route_table()) {
        if (docs::element_of(row) == nullptr) {
            out << fmt::format("| `{}` | `{}` | {} |\n", row.path, row.method, to_string(row.privilege));
        }
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
    write_errors(std::cout);
}
