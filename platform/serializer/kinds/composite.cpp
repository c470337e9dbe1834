#include "serializer/kinds/kind_functions.hpp"
#include "serializer/object_json.hpp"

#include <utility>

/// Objects, arrays and lists: fields that are made of fields.
namespace xpon::serializer {
namespace {

void set_default_object(const Field& field, std::byte* record) {
    set_defaults(*field.child, record + field.offset);
}

void read_nested(const Field& field, const cJSON& value, std::byte* record, FieldErrors& errors, const Path& path) {
    read_object(*field.child, value, record + field.offset, errors, &path);
}

Tree write_nested(const Field& field, const std::byte* record, FieldErrors& errors, const Path& path) {
    auto object = owned(cJSON_CreateObject());
    write_object(*field.child, record + field.offset, *object, errors, &path);
    return object;
}

bool copy_object(const Field& field, const std::byte* from, std::byte* to) {
    return copy_canonically(*field.child, from + field.offset, to + field.offset);
}

/// The field that describes one element of an array or list.
Field element_of(const Field& field) {
    if (field.element != nullptr) {
        return *field.element;
    }
    return {.kind = Kind::object, .size = field.child->size, .child = field.child};
}

void set_default_elements(const Field& field, std::byte* record, std::size_t count) {
    const auto element = element_of(field);
    for (std::size_t i = 0; i < count; ++i) {
        functions_of(element.kind).set_default(element, record + field.offset + i * element.size);
    }
}

void set_default_array(const Field& field, std::byte* record) {
    set_default_elements(field, record, static_cast<std::size_t>(field.max));
}

/// The number of elements that `value` holds, or empty after an error.
std::optional<std::size_t> expect_elements(const Field& field, const cJSON& value, FieldErrors& errors,
                                           const Path& path) {
    if (!expect_array(value, errors, path)) {
        return {};
    }
    const auto count = cJSON_GetArraySize(&value);
    if (count > field.max) {
        errors.add(Json_errors::too_many_items, path, {static_cast<double>(count), static_cast<double>(field.max)});
        return {};
    }
    return static_cast<std::size_t>(count);
}

void read_elements(const Field& field, const cJSON& value, std::byte* record, FieldErrors& errors, const Path& path) {
    const auto element = element_of(field);
    std::size_t position = 0;
    for (const cJSON* item = value.child; item != nullptr && !errors.full(); item = item->next, ++position) {
        functions_of(element.kind)
            .read(element, *item, record + field.offset + position * element.size, errors, Path(position, &path));
    }
}

void read_array(const Field& field, const cJSON& value, std::byte* record, FieldErrors& errors, const Path& path) {
    if (expect_elements(field, value, errors, path)) {
        read_elements(field, value, record, errors, path);
    }
}

void read_list(const Field& field, const cJSON& value, std::byte* record, FieldErrors& errors, const Path& path) {
    const auto count = expect_elements(field, value, errors, path);
    if (!count) {
        return;
    }
    set_default_elements(field, record, *count);
    read_elements(field, value, record, errors, path);
    record[field.count_offset] = static_cast<std::byte>(*count);
}

Tree write_elements(const Field& field, const std::byte* record, std::size_t count, FieldErrors& errors,
                    const Path& path) {
    const auto element = element_of(field);
    auto array = owned(cJSON_CreateArray());
    for (std::size_t i = 0; i < count; ++i) {
        auto value =
            functions_of(element.kind).write(element, record + field.offset + i * element.size, errors, Path(i, &path));
        if (value) {
            append(*array, std::move(value));
        }
    }
    return array;
}

Tree write_array(const Field& field, const std::byte* record, FieldErrors& errors, const Path& path) {
    return write_elements(field, record, static_cast<std::size_t>(field.max), errors, path);
}

std::size_t count_of(const Field& field, const std::byte* record) {
    return static_cast<std::size_t>(record[field.count_offset]);
}

Tree write_list(const Field& field, const std::byte* record, FieldErrors& errors, const Path& path) {
    const auto count = count_of(field, record);
    if (count > static_cast<std::size_t>(field.max)) {
        errors.add(Json_errors::too_many_items, path, {static_cast<double>(count), static_cast<double>(field.max)});
        return nullptr;
    }
    return write_elements(field, record, count, errors, path);
}

bool copy_elements(const Field& field, const std::byte* from, std::byte* to, std::size_t count) {
    const auto element = element_of(field);
    for (std::size_t i = 0; i < count; ++i) {
        const auto at = field.offset + i * element.size;
        if (!functions_of(element.kind).copy(element, from + at, to + at)) {
            return false;
        }
    }
    return true;
}

bool copy_array(const Field& field, const std::byte* from, std::byte* to) {
    return copy_elements(field, from, to, static_cast<std::size_t>(field.max));
}

void set_default_list(const Field&, std::byte*) {}

bool copy_list(const Field& field, const std::byte* from, std::byte* to) {
    to[field.count_offset] = from[field.count_offset];
    const auto count = count_of(field, from);
    return count <= static_cast<std::size_t>(field.max) && copy_elements(field, from, to, count);
}

} // namespace

constinit const KindFunctions object_functions{set_default_object, read_nested, write_nested, copy_object};
constinit const KindFunctions array_functions{set_default_array, read_array, write_array, copy_array};
constinit const KindFunctions list_functions{set_default_list, read_list, write_list, copy_list};

} // namespace xpon::serializer
