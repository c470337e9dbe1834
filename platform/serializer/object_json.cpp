#include "serializer/object_json.hpp"

#include "serializer/kinds/kind_functions.hpp"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>
#include <vector>

namespace xpon::serializer {
namespace {

constexpr std::string_view key_of(const cJSON& member) {
    return member.string == nullptr ? std::string_view() : member.string;
}

/// What the data says about each field of a table.
struct Found {
    std::array<const cJSON*, most_fields> values{};
    std::array<bool, most_fields> repeated{};
    std::vector<const cJSON*> unknown;
};

Found sort_members(const Table& table, const cJSON& data) {
    constexpr std::size_t most_unknown = 32; // more than that is never reported
    Found found;
    for (const cJSON* member = data.child; member != nullptr; member = member->next) {
        const auto* const field = find_field(table, key_of(*member));
        if (field == nullptr) {
            const auto is_same = [&](const cJSON* other) { return key_of(*other) == key_of(*member); };
            if (found.unknown.size() < most_unknown && std::ranges::none_of(found.unknown, is_same)) {
                found.unknown.push_back(member);
            }
            continue;
        }
        const auto position = static_cast<std::size_t>(field - table.fields.data());
        found.repeated[position] = found.values[position] != nullptr;
        found.values[position] = member;
    }
    return found;
}

} // namespace

void set_defaults(const Table& table, std::byte* record) {
    for (const auto& field : table.fields) {
        functions_of(field.kind).set_default(field, record);
    }
}

void read_object(const Table& table, const cJSON& data, std::byte* record, FieldErrors& errors, const Path* path) {
    if (cJSON_IsObject(&data) == 0) {
        return wrong_type(errors, path == nullptr ? Path("data") : *path, "object");
    }
    const auto found = sort_members(table, data);
    for (std::size_t i = 0; i < table.fields.size() && !errors.full(); ++i) {
        const auto& field = table.fields[i];
        const Path field_path(field.key, path);
        if (found.repeated[i]) {
            errors.add(Json_errors::repeated_key, field_path, {std::string_view(field.key)});
        } else if (found.values[i] != nullptr) {
            functions_of(field.kind).read(field, *found.values[i], record, errors, field_path);
        } else if (field.is_required) {
            errors.add(Json_errors::text_too_short, field_path, {0.0, static_cast<double>(field.min)});
        }
    }
    for (const auto* member : found.unknown) {
        errors.add(Json_errors::unknown_key, Path(key_of(*member), path), {key_of(*member)});
    }
}

void write_object(const Table& table, const std::byte* record, cJSON& target, FieldErrors& errors, const Path* path) {
    for (const auto& field : table.fields) {
        auto value = functions_of(field.kind).write(field, record, errors, Path(field.key, path));
        if (value) {
            add_member(target, field.key, std::move(value));
        }
    }
}

bool copy_canonically(const Table& table, const std::byte* from, std::byte* to) {
    return std::ranges::all_of(table.fields,
                               [&](const Field& field) { return functions_of(field.kind).copy(field, from, to); });
}

} // namespace xpon::serializer
