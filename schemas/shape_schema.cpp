#include "schemas/shape_schema.hpp"

#include "schemas/text_patterns.hpp"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace xpon::schemas {
namespace {

using api_service::Shape;

Json text(const Shape& shape) {
    Json schema{{"type", "string"}};
    if (shape.min != 0) {
        schema["minLength"] = shape.min;
    }
    if (shape.max != 0) {
        schema["maxLength"] = shape.max;
    }
    if (!shape.pattern.empty()) {
        schema["pattern"] = anchored(shape.pattern);
    }
    Json names = Json::array();
    const auto add = [&](const char* name) {
        if (std::ranges::find(names, Json(name)) == names.end()) {
            names.push_back(name);
        }
    };
    std::ranges::for_each(shape.texts, add);
    if (shape.text_of != nullptr) {
        for (unsigned value = 0; value < 256; ++value) {
            add(shape.text_of(value));
        }
    }
    if (!names.empty()) {
        schema["enum"] = std::move(names);
    }
    return schema;
}

Json array(const Shape& shape, const RecordSchemas& records, Json& definitions) {
    Json schema{{"type", "array"}, {"items", schema_of(*shape.item, records, definitions)}};
    if (shape.min != 0) {
        schema["minItems"] = shape.min;
    }
    if (shape.max != 0) {
        schema["maxItems"] = shape.max;
    }
    return schema;
}

/// "service {}" is "service 1", "service 2" and so on.
std::string key_pattern(std::string_view format) {
    return anchored("^" + fmt::format(fmt::runtime(format), "[1-9][0-9]*") + "$");
}

Json object(const Shape& shape, const RecordSchemas& records, Json& definitions) {
    Json properties = Json::object();
    Json required = Json::array();
    for (const auto& member : shape.members) {
        const std::string key(member.key);
        properties[key] = schema_of(*member.shape, records, definitions);
        if (*member.about != '\0') {
            properties[key]["description"] = member.about;
        }
        if (!member.is_optional) {
            required.push_back(key);
        }
    }
    auto schema = closed_object(std::move(properties), std::move(required));
    if (shape.item != nullptr) {
        schema["patternProperties"] = {{key_pattern(shape.key_format), schema_of(*shape.item, records, definitions)}};
    }
    return schema;
}

Json one_of(const Shape& shape, const RecordSchemas& records, Json& definitions) {
    Json choices = Json::array();
    for (const auto* choice : shape.choices) {
        choices.push_back(schema_of(*choice, records, definitions));
    }
    return {{"anyOf", std::move(choices)}};
}

Json element(const Shape& shape, const RecordSchemas& records, Json& definitions) {
    const auto elements = cfgdb::all_elements();
    const auto found =
        std::ranges::find(elements, shape.path, [](const auto& row) { return std::string_view(row.path); });
    if (found == elements.end()) {
        throw std::runtime_error("There is no element " + std::string(shape.path));
    }
    return reference(records.define(found->table, Use::answer, definitions));
}

Json unnamed(const Shape& shape, const RecordSchemas& records, Json& definitions) {
    switch (shape.form) {
    case Shape::Form::anything:
        return Json::object();
    case Shape::Form::integer:
        return {{"type", "integer"}, {"minimum", shape.min}, {"maximum", shape.max}};
    case Shape::Form::number:
        return {{"type", "number"}};
    case Shape::Form::text:
        return text(shape);
    case Shape::Form::array:
        return array(shape, records, definitions);
    case Shape::Form::object:
        return object(shape, records, definitions);
    case Shape::Form::one_of:
        return one_of(shape, records, definitions);
    case Shape::Form::element:
        break;
    }
    return element(shape, records, definitions);
}

} // namespace

Json schema_of(const Shape& shape, const RecordSchemas& records, Json& definitions) {
    if (*shape.name == '\0') {
        return unnamed(shape, records, definitions);
    }
    if (!definitions.contains(shape.name)) {
        definitions[shape.name] = nullptr; // its place is before those that it needs
        definitions[shape.name] = unnamed(shape, records, definitions);
    }
    return reference(shape.name);
}

} // namespace xpon::schemas
