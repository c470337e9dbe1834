#include "serializer/forgiving_json.hpp"

#include "serializer/cjson_tree.hpp"
#include "serializer/field_errors.hpp"
#include "serializer/object_json.hpp"
#include "serializer/record_json.hpp"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string_view>

#include <fmt/format.h>

namespace xpon::serializer {
namespace {

using Lines = std::vector<std::string>;

void skip_unknown_keys(const Table& table, cJSON& object, const Path* path, Lines& lines);

void skip_unknown_keys_below(const Field& field, cJSON& value, const Path& path, Lines& lines) {
    if (field.child == nullptr) {
        return;
    }
    if (field.kind == Kind::object) {
        return skip_unknown_keys(*field.child, value, &path, lines);
    }
    std::size_t position = 0;
    for (cJSON* item = value.child; cJSON_IsArray(&value) != 0 && item != nullptr; item = item->next, ++position) {
        const Path item_path(position, &path);
        skip_unknown_keys(*field.child, *item, &item_path, lines);
    }
}

/// Of a repeated key the first one counts.
void skip_unknown_keys(const Table& table, cJSON& object, const Path* path, Lines& lines) {
    if (cJSON_IsObject(&object) == 0) {
        return;
    }
    std::vector<const Field*> seen;
    for (cJSON* member = object.child; member != nullptr;) {
        cJSON* const next = member->next;
        const std::string_view key(member->string);
        const auto* const field = find_field(table, key);
        const Path member_path(key, path);
        if (field == nullptr || std::ranges::find(seen, field) != seen.end()) {
            constexpr std::size_t longest_path = 64;
            lines.push_back(fmt::format("{}: {} key is skipped", member_path.text().substr(0, longest_path),
                                        field == nullptr ? "Unknown" : "Repeated"));
            cJSON_Delete(cJSON_DetachItemViaPointer(&object, member));
        } else {
            seen.push_back(field);
            skip_unknown_keys_below(*field, *member, member_path, lines);
        }
        member = next;
    }
}

cJSON* find_part(cJSON& tree, std::string_view part) {
    if (cJSON_IsArray(&tree) == 0) {
        return cJSON_GetObjectItemCaseSensitive(&tree, std::string(part).c_str());
    }
    int position = -1;
    std::from_chars(part.begin(), part.end(), position);
    return cJSON_GetArrayItem(&tree, position);
}

/// Removes the field of an object that the path leads to. Array items cannot go without moving those behind them, nor
/// can what is missing: then it is the field that holds them. False when there is none.
bool take_out(cJSON& tree, std::string_view path) {
    const auto dot = path.find('.');
    auto* const part = find_part(tree, path.substr(0, dot));
    if (part == nullptr) {
        return false;
    }
    if (dot != std::string_view::npos && take_out(*part, path.substr(dot + 1))) {
        return true;
    }
    if (cJSON_IsObject(&tree) == 0) {
        return false;
    }
    cJSON_Delete(cJSON_DetachItemViaPointer(&tree, part));
    return true;
}

std::string text_of(const cJSON& value) {
    return cJSON_IsString(&value) != 0 ? value.valuestring : core::print_line(&value).get();
}

/// "PATH: TEXT" with the parameters in their places.
std::string line_of(const cJSON& error, std::string_view path) {
    const auto* message = cJSON_GetObjectItemCaseSensitive(&error, "message");
    auto text = text_of(*cJSON_GetObjectItemCaseSensitive(message, "key"));
    const cJSON* parameter = nullptr;
    cJSON_ArrayForEach(parameter, cJSON_GetObjectItemCaseSensitive(message, "params")) {
        const auto place = fmt::format("{{{}}}", parameter->string);
        if (const auto at = text.find(place); at != std::string::npos) {
            text.replace(at, place.size(), text_of(*parameter));
        }
    }
    return fmt::format("{}: {}", path, text);
}

Tree read_strictly(const Table& table, const cJSON& data, std::byte* record) {
    cJSON* errors = nullptr;
    if (deserialize_record(table, &data, record, &errors) != 0) {
        throw std::bad_alloc();
    }
    return Tree(errors);
}

} // namespace

std::vector<std::string> read_what_fits(const Table& table, cJSON& data, std::byte* record) {
    Lines lines;
    skip_unknown_keys(table, data, nullptr, lines);
    for (;;) {
        const auto errors = read_strictly(table, data, record);
        if (!errors) {
            return lines;
        }
        bool has_changed = false;
        const cJSON* error = nullptr;
        cJSON_ArrayForEach(error, errors.get()) {
            const auto path = text_of(*cJSON_GetObjectItemCaseSensitive(error, "path"));
            if (take_out(data, path)) {
                has_changed = true;
                lines.push_back(line_of(*error, path) + "; it takes its default");
            } else if (!has_changed && error->next == nullptr) {
                lines.push_back(line_of(*error, path) + "; the record takes its defaults");
            }
        }
        if (!has_changed) {
            std::memset(record, 0, table.size);
            set_defaults(table, record);
            return lines;
        }
    }
}

} // namespace xpon::serializer
