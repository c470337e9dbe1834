// Writes the table of routes and fields that oltctl completes words and explains records from: it knows no library of
// the platform, and gets this table as a source of its own.

#include "api_service/protocol/route_table.hpp"
#include "docs/field_text.hpp"
#include "docs/record_comments.hpp"
#include "docs/routes.hpp"

#include <exception>
#include <iostream>
#include <string>
#include <string_view>

#include <fmt/format.h>

namespace {

using namespace xpon;
using serializer::Kind;

constexpr std::string_view beginning =
    "// Made by `build/dev/docs/oltctl_catalogue` from the service's own tables; do not edit.\n\n"
    "#include \"client/oltctl/catalogue/catalogue.hpp\"\n\n"
    "// clang-format off\n"
    "namespace xpon::oltctl {\n"
    "namespace {\n\n";
constexpr std::string_view end = R"(
} // namespace

std::span<const CatalogueRoute> catalogue_routes() {
    return routes;
}

std::span<const CatalogueField> catalogue_fields() {
    return fields;
}

} // namespace xpon::oltctl
)";

std::string_view form_of(const serializer::Field& field) {
    switch (field.kind) {
    case Kind::boolean:
        return "boolean";
    case Kind::u8:
    case Kind::u16:
    case Kind::u32:
    case Kind::i8:
    case Kind::i16:
        return "number";
    case Kind::enumeration:
    case Kind::text:
    case Kind::secret:
    case Kind::ipv4:
    case Kind::mac:
    case Kind::vlan_set:
        return "text";
    case Kind::serial:
        return "serial";
    case Kind::port_set:
        return "numbers";
    case Kind::object:
        return "object";
    case Kind::array:
    case Kind::list:
        return "list";
    }
    return {};
}

/// As a literal of C++.
std::string literal(std::string_view text) {
    std::string between;
    for (const char letter : text) {
        between += letter == '"' || letter == '\\' ? "\\" : "";
        between += letter;
    }
    return "\"" + between + "\"";
}

void write_field(std::string_view element, const std::string& key, const serializer::Field& field,
                 const std::string& meaning) {
    std::cout << fmt::format("    {{{}, {}, Form::{}, {}, {}, {}, {}}},\n", literal(element), literal(key),
                             form_of(field), literal(docs::describe_values(field)),
                             literal(docs::describe_default(field)), literal(meaning),
                             literal(fmt::format("{}", fmt::join(field.names, " "))));
}

void write_fields(const docs::RecordComments& comments, std::string_view element, const serializer::Table& table,
                  const std::string& prefix) {
    for (const auto& field : table.fields) {
        const auto key = prefix + field.key;
        write_field(element, key, field, comments.of(table.name, field.key));
        const bool is_array = field.kind == Kind::array || field.kind == Kind::list;
        if (field.element != nullptr) {
            write_field(element, key + "[]", *field.element, "");
        }
        if (field.child != nullptr) {
            write_fields(comments, element, *field.child, key + (is_array ? "[]." : "."));
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    try {
        const docs::RecordComments comments(argc > 1 ? argv[1] : "platform/include/xpon/cfgdb/records");
        std::cout << beginning << "constexpr CatalogueRoute routes[] = {\n";
        for (const auto& row : api_service::route_table()) {
            std::cout << fmt::format("    {{{}, {}, {}}},\n", literal(row.path), literal(row.method),
                                     literal(to_string(row.privilege)));
        }
        std::cout << "};\n\nconstexpr CatalogueField fields[] = {\n";
        for (const auto& element : cfgdb::all_elements()) {
            write_fields(comments, docs::full_path(element), element.table, "");
        }
        std::cout << "};\n" << end;
    } catch (const std::exception& exception) {
        std::cerr << exception.what() << '\n';
        return 1;
    }
}
