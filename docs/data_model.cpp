// Writes the data model to the standard output: the elements of the configuration with their fields, and the checks
// of a commit, each from the table that the program works with.

#include "api_service/protocol/route_table.hpp"
#include "cfgdb/checks/checks.hpp"
#include "docs/field_text.hpp"
#include "docs/record_comments.hpp"
#include "docs/routes.hpp"

#include <cctype>
#include <exception>
#include <iostream>

#include <fmt/format.h>

namespace {

using namespace xpon;

constexpr std::string_view introduction = R"(# Data model

Made by `build/dev/docs/data_model` from the program's own tables and the comments of the records; do not edit. How a
record is read and written is told in [api.md](api.md#candidate-and-running), the words in [glossary.md](glossary.md).

## How records refer to each other

Profiles and templates are named by their number, counted from 1; 0 is none. One is defined when its `name` is not empty,
so setting `{}` undefines it. An ONT is configured when its `serial` is not 0.

```
 pon.ont P, O -------- ont_template --------> ont_template -+-> ports, management, shaping
    |    \                                                  +-> of services 1 to 8: cross_connect, dba
    |     +-- instead of the template's --> ports, management, shaping
    |
 pon.ont.service P, O, S -- in mode custom --> cross_connect, dba
```

A service of an ONT gets its cross-connect and DBA profile from the service of the same number in the template, or in mode
`custom` from its own record; in mode `off`, or without a cross-connect profile, there is none. What its own record says of
VLANs and limits counts instead of the profile's.

)";

constexpr std::string_view about_elements = R"(## Elements

The path of a request is `configuration.` and that of the element. A caller needs the privilege behind the method or a
higher one. Beyond the limits below, fields of one record may contradict each other: a `set` is then answered with error
32 of the [API reference](api-reference.md#error-texts), the later of the fields and the reason.

| Element | Indices | Methods |
|---|---|---|
)";

constexpr std::string_view about_checks = R"text(
## Checks of a commit

A commit is refused when one of these does not hold. They run in this order, each when a record of one of its elements has
changed, and look at the configuration as it would run. A VLAN or profile is in use when a service of a configured ONT
uses it; profiles and templates that are not in use count where the check says so and for the roles of VLANs.

The error of the answer has the path of the record at fault, such as `configuration.ZebGCfg.pon.ont.service.3.17.2` for
service 2 of ONT 17 on PON port 3, and one of the texts. Of a VLAN that is the service which has it in its own record, else
the cross-connect profile. Only the first fault is answered, with the number of the others, such as " (and 2 more)"; up to
99 of those are in the log.

| What holds | Elements | Texts |
|---|---|---|
)text";

/// The link to a heading: its letters, digits, `_` and `-` in lower case.
std::string anchor(std::string_view heading) {
    std::string text;
    for (const char letter : heading) {
        if (std::isalnum(static_cast<unsigned char>(letter)) != 0 || letter == '_' || letter == '-') {
            text += static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
        }
    }
    return text;
}

std::string link(const cfgdb::Element& element) {
    return fmt::format("[`{}`](#{})", element.path, anchor(docs::full_path(element)));
}

/// What tells an element from the others.
std::string_view short_name(const cfgdb::Element& element) {
    const std::string_view path(element.path);
    const auto profile = path.find("profiles_ont.");
    return path.substr(profile == std::string_view::npos ? path.rfind('.') + 1 : profile);
}

std::vector<const api_service::RouteRow*> routes_of(const cfgdb::Element& element) {
    std::vector<const api_service::RouteRow*> routes;
    for (const auto& row : api_service::route_table()) {
        if (docs::element_of(row) == &element) {
            routes.push_back(&row);
        }
    }
    return routes;
}

std::string describe_indices(const cfgdb::Element& element) {
    const auto routes = routes_of(element);
    if (!routes.empty() && !routes.front()->make_pre_hooks({}).empty()) {
        return element.depth == 1 ? "PON port, ONT" : fmt::format("PON port, ONT, 1 to {}", element.sizes[1]);
    }
    return element.depth == 0 ? "none" : fmt::format("1 to {}", element.sizes[0]);
}

void write_list(std::ostream& out) {
    out << about_elements;
    for (const auto& element : cfgdb::all_elements()) {
        std::vector<std::string> methods;
        for (const auto* route : routes_of(element)) {
            methods.push_back(fmt::format("`{}` {}", route->method, to_string(route->privilege)));
        }
        out << fmt::format("| {} | {} | {} |\n", link(element), describe_indices(element), fmt::join(methods, ", "));
    }
}

void write_fields(std::ostream& out, const docs::RecordComments& comments, const serializer::Table& table,
                  const std::string& prefix) {
    for (const auto& field : table.fields) {
        const auto key = prefix + field.key;
        const bool is_array = field.kind == serializer::Kind::array || field.kind == serializer::Kind::list;
        auto values = docs::describe_values(field);
        if (field.element != nullptr) {
            values += fmt::format(": {}, each by default {}", docs::describe_values(*field.element),
                                  docs::describe_default(*field.element));
        }
        out << fmt::format("| `{}` | {} | {} | {} |\n", key, values, docs::describe_default(field),
                           comments.of(table.name, field.key));
        if (field.child != nullptr) {
            write_fields(out, comments, *field.child, key + (is_array ? "[]." : "."));
        }
    }
}

void write_elements(std::ostream& out, const docs::RecordComments& comments) {
    for (const auto& element : cfgdb::all_elements()) {
        const std::string_view record = element.table.name;
        out << fmt::format("\n### `{}`\n\n`{}`: {}\n\n| Key | Values | Default | Meaning |\n|---|---|---|---|\n",
                           docs::full_path(element), record, comments.of(record));
        write_fields(out, comments, element.table, "");
    }
}

void write_checks(std::ostream& out) {
    out << about_checks;
    for (const auto& check : cfgdb::all_checks()) {
        std::vector<std::string> elements;
        for (const auto id : check.elements) {
            elements.push_back(fmt::format("`{}`", short_name(cfgdb::element(id))));
        }
        out << fmt::format("| {} | {} | \"{}\" |\n", check.rule, fmt::join(elements, ", "),
                           fmt::join(check.texts, "\"; \""));
    }
}

} // namespace

int main(int argc, char** argv) {
    try {
        const docs::RecordComments comments(argc > 1 ? argv[1] : "platform/include/xpon/cfgdb/records");
        std::cout << introduction;
        write_list(std::cout);
        write_elements(std::cout, comments);
        write_checks(std::cout);
    } catch (const std::exception& exception) {
        std::cerr << exception.what() << '\n';
        return 1;
    }
}
