#include "schemas/typescript.hpp"

#include <algorithm>
#include <regex>
#include <set>
#include <stdexcept>
#include <vector>

#include <fmt/ranges.h>

namespace xpon::schemas {
namespace {

constexpr std::size_t step = 2;

/// A member of an object, of the type that it has in one or several of the objects that a place can have.
struct Property {
    std::string key;
    std::vector<std::string> types;
    std::string comment;
    bool is_optional = false;
};

std::string quoted(const std::string& text) {
    return Json(text).dump();
}

/// "^service [1-9][0-9]*$" as a template: `service ${number}`.
std::string key_template(std::string pattern) {
    static const std::regex anchors(R"(^\^|\$\(\?!\\n\)$)");
    static const std::regex number(R"(\[1-9\]\[0-9\]\*)");
    return "`" + std::regex_replace(std::regex_replace(pattern, anchors, ""), number, "${number}") + "`";
}

std::set<std::string> required_of(const Json& object) {
    const auto found = object.find("required");
    return found == object.end() ? std::set<std::string>() : found->get<std::set<std::string>>();
}

/// The members of all objects together; one that is not in each of them is optional.
std::vector<Property> properties_of(const std::vector<Json>& objects, std::size_t indentation) {
    std::vector<Property> properties;
    for (const auto& object : objects) {
        for (const auto& [key, schema] : object.at("properties").items()) {
            auto found = std::ranges::find(properties, key, &Property::key);
            if (found == properties.end()) {
                found = properties.insert(properties.end(),
                                          {.key = key, .types = {}, .comment = comment_of(schema, indentation)});
            }
            const auto type = type_of(schema, indentation);
            if (std::ranges::find(found->types, type) == found->types.end()) {
                found->types.push_back(type);
            }
        }
    }
    for (auto& property : properties) {
        property.is_optional = std::ranges::any_of(
            objects, [&](const Json& object) { return !required_of(object).contains(property.key); });
    }
    return properties;
}

std::string objects_of(const std::vector<Json>& objects, std::size_t indentation) {
    const std::string blanks(indentation + step, ' ');
    std::string text = "{\n";
    for (const auto& property : properties_of(objects, indentation + step)) {
        static const std::regex identifier("[A-Za-z_][A-Za-z0-9_]*");
        text += fmt::format("{}{}{}{}: {};\n", property.comment, blanks,
                            std::regex_match(property.key, identifier) ? property.key : quoted(property.key),
                            property.is_optional ? "?" : "", fmt::join(property.types, " | "));
    }
    for (const auto& object : objects) {
        const auto patterns = object.value("patternProperties", Json::object());
        for (const auto& [pattern, schema] : patterns.items()) {
            text +=
                fmt::format("{}[key: {}]: {};\n", blanks, key_template(pattern), type_of(schema, indentation + step));
        }
    }
    return text + std::string(indentation, ' ') + "}";
}

std::string union_of(const Json& values) {
    std::vector<std::string> texts;
    for (const auto& value : values) {
        texts.push_back(value.dump());
    }
    return fmt::format("{}", fmt::join(texts, " | "));
}

bool is_object(const Json& schema) {
    return schema.value("type", Json()) == "object";
}

std::string array_of(const Json& schema, std::size_t indentation) {
    if (schema.contains("prefixItems")) {
        return "number[]";
    }
    const auto item = type_of(schema.at("items"), indentation);
    return item.find(" | ") == std::string::npos ? item + "[]" : fmt::format("Array<{}>", item);
}

std::string type_of_simple(const Json& schema, std::size_t indentation) {
    const auto type = schema.at("type").get<std::string>();
    if (type == "integer" || type == "number") {
        return "number";
    }
    if (type == "array") {
        return array_of(schema, indentation);
    }
    if (type != "string" && type != "boolean") {
        throw std::runtime_error("no TypeScript for " + schema.dump());
    }
    return type;
}

} // namespace

std::string type_of(const Json& schema, std::size_t indentation) {
    if (schema.contains("$ref")) {
        const auto reference = schema["$ref"].get<std::string>();
        return reference.substr(reference.rfind('/') + 1);
    }
    if (schema.contains("const")) {
        return schema["const"].dump();
    }
    if (schema.contains("enum")) {
        return union_of(schema["enum"]);
    }
    if (is_object(schema)) {
        return objects_of({schema}, indentation);
    }
    if (schema.contains("anyOf") && !schema.contains("type")) {
        return objects_of(schema["anyOf"].get<std::vector<Json>>(), indentation);
    }
    return schema.contains("type") ? type_of_simple(schema, indentation) : "unknown";
}

std::string comment_of(const Json& schema, std::size_t indentation) {
    std::vector<std::string> parts;
    if (schema.contains("description")) {
        parts.push_back(schema["description"].get<std::string>());
    }
    if (schema.contains("x-names")) {
        parts.push_back(fmt::format("the number of a {}, 0 for none", schema["x-names"].get<std::string>()));
    }
    const auto add_limits = [&](const char* least, const char* most, const char* what) {
        if (schema.contains(most)) {
            const auto from = schema.value(least, Json(0));
            parts.push_back(from == schema[most] ? fmt::format("{}{}", from.dump(), what)
                                                 : fmt::format("{} to {}{}", from.dump(), schema[most].dump(), what));
        }
    };
    add_limits("minimum", "maximum", "");
    add_limits("minLength", "maxLength", " characters");
    add_limits("minItems", "maxItems", " items");
    if (schema.contains("multipleOf")) {
        parts.push_back(fmt::format("multiples of {}", schema["multipleOf"].dump()));
    }
    if (schema.contains("default")) {
        parts.push_back(fmt::format("default {}", schema["default"].dump()));
    }
    return parts.empty() ? "" : fmt::format("{}/** {} */\n", std::string(indentation, ' '), fmt::join(parts, "; "));
}

std::string declaration(const std::string& name, const Json& schema) {
    const auto type = type_of(schema);
    const bool is_interface = type.starts_with("{\n");
    const Json described = schema.contains("description") ? Json{{"description", schema["description"]}} : Json();
    return fmt::format("{}export {} {}{} {}{}\n", comment_of(described, 0), is_interface ? "interface" : "type", name,
                       is_interface ? "" : " =", type, is_interface ? "" : ";");
}

} // namespace xpon::schemas
