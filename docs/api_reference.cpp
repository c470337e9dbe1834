// Writes the reference of the API to the standard output: routes and error texts, each from the table that the program
// works with.

#include "docs/error_texts.hpp"
#include "docs/routes.hpp"

#include <iostream>
#include <string_view>

#include <fmt/format.h>

namespace {

using namespace xpon;

constexpr std::string_view introduction = R"(# API reference

Made by `build/dev/docs/api_reference` from the program's own tables; do not edit. How a message looks is told in
[api.md](api.md); the elements of the configuration, with their methods, are in [data-model.md](data-model.md#elements).
The last column names the [schemas](schemas.md) of a route's requests and answers: `requests/` and `answers/` with that name.

)";

void write_routes(std::ostream& out) {
    out << "## Routes\n\nA caller needs the privilege of the row or a higher one.\n\n"
           "| Path | Method | Privilege | Schemas |\n|---|---|---|---|\n";
    for (const auto& row : api_service::route_table()) {
        if (docs::element_of(row) == nullptr) {
            out << fmt::format("| `{0}` | `{1}` | {2} | [`{0}.{1}.json`](schemas.md#answers) |\n", row.path, row.method,
                               to_string(row.privilege));
        }
    }
}

void write_errors(std::ostream& out) {
    out << "\n## Error texts\n\n`{p0}` and so on stand for the parameters of the error.\n\n| Index | Text "
           "|\n|---|---|\n";
    for (const auto& [index, text] : docs::error_texts()) {
        out << fmt::format("| {} | {} |\n", index, text);
    }
}

} // namespace

int main() {
    std::cout << introduction;
    write_routes(std::cout);
    write_errors(std::cout);
}
