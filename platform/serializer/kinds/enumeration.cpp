#include "serializer/kinds/kind_functions.hpp"
#include "serializer/record_memory.hpp"

#include <algorithm>
#include <string>
#include <string_view>

namespace xpon::serializer {
namespace {

std::string joined(std::span<const char* const> names) {
    std::string text;
    for (const char* name : names) {
        text += text.empty() ? "" : ", ";
        text += name;
    }
    return text;
}

void read(const Field& field, const cJSON& value, std::byte* record, FieldErrors& errors, const Path& path) {
    const auto text = expect_string(value, errors, path);
    if (!text) {
        return;
    }
    const auto found = std::ranges::find(field.names, *text, [](const char* name) { return std::string_view(name); });
    if (found == field.names.end()) {
        return errors.add(Json_errors::unknown_name, path, {*text, std::string_view(joined(field.names))});
    }
    store_number(field, record, found - field.names.begin());
}

Tree write(const Field& field, const std::byte* record, FieldErrors& errors, const Path& path) {
    const auto value = load_number(field, record);
    if (value > field.max) {
        errors.add(Json_errors::out_of_range, path, {static_cast<double>(value), 0.0, static_cast<double>(field.max)});
        return nullptr;
    }
    return owned(cJSON_CreateStringReference(field.names[static_cast<std::size_t>(value)]));
}

} // namespace

constinit const KindFunctions enumeration_functions{set_default_number, read, write, copy_bytes};

} // namespace xpon::serializer
