#include "schemas/field_schema.hpp"

#include "docs/routes.hpp"
#include "schemas/text_patterns.hpp"
#include "serializer/ipv4_text.hpp"
#include "xpon/peer_side/serial_bytes.hpp"

#include <algorithm>
#include <array>
#include <string_view>

namespace xpon::schemas {
namespace {

using serializer::Field;
using serializer::Kind;
using serializer::Table;

/// The units in which keys end.
struct Unit {
    std::string_view suffix;
    std::string_view name;
};
constexpr std::array units{
    Unit{"_s", "s"},         Unit{"_kbps", "kbit/s"},       Unit{"_pps", "packets per second"},
    Unit{"_km", "km"},       Unit{"_c", "degrees Celsius"}, Unit{"_percent", "%"},
    Unit{"_bytes", "bytes"},
};

/// What a value may have beyond what its schema says.
std::string_view advice(const Field& field) {
    switch (field.kind) {
    case Kind::text:
        return field.characters == serializer::Characters::text ? "lengths count bytes of UTF-8" : "";
    case Kind::secret:
        return "in obfuscated form, empty for none";
    case Kind::vlan_set:
        return "VLANs and ranges of them such as 1-4,7";
    default:
        return {};
    }
}

std::string description_of(const Field& field, const std::string& comment) {
    const std::string_view key(field.key);
    const auto unit = std::ranges::find_if(units, [&](const Unit& known) { return key.ends_with(known.suffix); });
    std::string text;
    for (const auto& part : {comment, std::string(unit == units.end() ? "" : unit->name), std::string(advice(field))}) {
        text += (text.empty() || part.empty() ? "" : "; ") + part;
    }
    return text;
}

Json integer(std::int64_t min, std::int64_t max) {
    return {{"type", "integer"}, {"minimum", min}, {"maximum", max}};
}

Json number(const Field& field) {
    auto schema = integer(field.min, field.max);
    if (field.step != 1) {
        schema["multipleOf"] = field.step;
    }
    schema["default"] = field.default_number;
    if (field.target != nullptr) {
        const auto elements = cfgdb::all_elements();
        const auto target =
            std::ranges::find(elements, &field.target(), [](const cfgdb::Element& row) { return &row.table; });
        schema["x-names"] = docs::full_path(*target);
    }
    return schema;
}

Json text(const Field& field) {
    Json schema{{"type", "string"}, {"maxLength", field.max}, {"pattern", pattern_of(field.characters)}};
    if (field.may_be_empty) {
        schema["anyOf"] = {Json{{"maxLength", 0}}, Json{{"minLength", field.min}}};
    } else if (field.min > 0) {
        schema["minLength"] = field.min;
    }
    if (!field.is_required) {
        schema["default"] = field.default_text;
    }
    return schema;
}

Json matching(const std::string& pattern, const std::string& default_text) {
    return {{"type", "string"}, {"pattern", pattern}, {"default", default_text}};
}

Json ipv4(const Field& field) {
    const auto address = [](std::int64_t value) { return static_cast<std::uint32_t>(value); };
    auto schema = matching(ipv4_pattern(address(field.min), address(field.max)),
                           serializer::format_ipv4(address(field.default_number)));
    schema["format"] = "ipv4";
    return schema;
}

Json serial() {
    const auto no_serial = serial_bytes(0);
    Json bytes = Json::array();
    for (std::size_t i = 0; i < no_serial.size(); ++i) {
        bytes.push_back(integer(0, i < sizeof(std::uint64_t) ? 255 : 0));
    }
    return {{"type", "array"},          {"prefixItems", bytes},     {"items", false},
            {"minItems", bytes.size()}, {"maxItems", bytes.size()}, {"default", no_serial}};
}

Json port_set(const Field& field) {
    Json ports = Json::array();
    for (std::int64_t port = 1; port <= field.max; ++port) {
        if ((field.default_number >> (port - 1) & 1) != 0) {
            ports.push_back(port);
        }
    }
    return {{"type", "array"}, {"items", integer(1, field.max)}, {"uniqueItems", true}, {"default", ports}};
}

} // namespace

std::string RecordSchemas::define(const Table& table, Use use, Json& definitions) const {
    const auto name = std::string(table.name) + (use == Use::set ? "Data" : "");
    if (!definitions.contains(name)) {
        definitions[name] = nullptr; // its place is before those that it needs
        definitions[name] = object(table, use, definitions);
    }
    return name;
}

Json RecordSchemas::object(const Table& table, Use use, Json& definitions) const {
    Json properties = Json::object();
    Json required = Json::array();
    for (const auto& field : table.fields) {
        auto schema = value(field, use, definitions);
        if (const auto text = description_of(field, comments_.of(table.name, field.key)); !text.empty()) {
            schema["description"] = text;
        }
        properties[field.key] = std::move(schema);
        if (use == Use::answer || field.is_required) {
            required.push_back(field.key);
        }
    }
    auto schema = closed_object(std::move(properties), std::move(required));
    if (const auto comment = comments_.of(table.name); !comment.empty()) {
        schema["description"] = comment;
    }
    return schema;
}

Json RecordSchemas::value(const Field& field, Use use, Json& definitions) const {
    switch (field.kind) {
    case Kind::boolean:
        return {{"type", "boolean"}, {"default", field.default_number != 0}};
    case Kind::u8:
    case Kind::u16:
    case Kind::u32:
    case Kind::i8:
    case Kind::i16:
        return number(field);
    case Kind::enumeration:
        return {{"type", "string"},
                {"enum", std::vector<std::string>(field.names.begin(), field.names.end())},
                {"default", field.names[static_cast<std::size_t>(field.default_number)]}};
    case Kind::text:
        return text(field);
    case Kind::secret:
        return matching(secret_pattern(static_cast<std::size_t>(field.min), static_cast<std::size_t>(field.max)), "");
    case Kind::ipv4:
        return ipv4(field);
    case Kind::mac:
        return matching(mac_pattern(), "00:00:00:00:00:00");
    case Kind::serial:
        return serial();
    case Kind::port_set:
        return port_set(field);
    case Kind::vlan_set:
        return matching(vlan_list_pattern(), field.default_text);
    case Kind::object:
        return reference(define(*field.child, use, definitions));
    case Kind::array:
    case Kind::list:
        break;
    }
    return array(field, use, definitions);
}

Json RecordSchemas::array(const Field& field, Use use, Json& definitions) const {
    auto items = field.child != nullptr ? reference(define(*field.child, use, definitions))
                                        : value(*field.element, use, definitions);
    Json schema{{"type", "array"}, {"items", std::move(items)}, {"maxItems", field.max}};
    if (field.kind == Kind::array && use == Use::answer) {
        schema["minItems"] = field.max;
    }
    if (field.kind == Kind::list) {
        schema["default"] = Json::array();
    }
    return schema;
}

} // namespace xpon::schemas
