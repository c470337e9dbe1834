#include "cfgdb/saved_configuration.hpp"

#include "serializer/cjson_tree.hpp"
#include "serializer/record_json.hpp"
#include "xpon/core/json_tree.hpp"

#include <algorithm>
#include <charconv>
#include <optional>

#include <boost/crc.hpp>
#include <fmt/format.h>

namespace xpon::cfgdb {
namespace {

using serializer::owned;
using serializer::Tree;

constexpr const char* format_name = "olt-config";
constexpr int format_version = 1;

std::uint32_t checksum(std::string_view text) {
    boost::crc_32_type crc;
    crc.process_bytes(text.data(), text.size());
    return crc.checksum();
}

std::string print_record(const RecordId& id, Bytes stored) {
    const auto& table = element(id.element).table;
    // In the database a record may lie at any address.
    const std::vector<std::byte> record(stored.begin(), stored.end());
    const auto target = owned(cJSON_CreateObject());
    cJSON* errors = nullptr;
    if (serializer::serialize_record(table, record.data(), target.get(), &errors) != 0) {
        throw std::bad_alloc();
    }
    const Tree owner(errors);
    return core::print_line(target.get()).get();
}

/// The key of a record within its element; empty for an element of depth 0.
std::string key_of(const RecordId& id) {
    std::string key;
    for (unsigned level = 0; level < element(id.element).depth; ++level) {
        key += fmt::format("{}{}", level == 0 ? "" : ".", id.indices[level] + 1);
    }
    return key;
}

/// The reverse of key_of.
std::optional<RecordId> parse_key(ElementId id, std::string_view key) {
    const auto& row = element(id);
    RecordId result{id, {}};
    for (unsigned level = 0; level < row.depth; ++level) {
        unsigned number = 0;
        const auto [end, fault] = std::from_chars(key.begin(), key.end(), number);
        if (fault != std::errc() || number < 1 || number > row.sizes[level]) {
            return {};
        }
        result.indices[level] = static_cast<std::uint16_t>(number - 1);
        key.remove_prefix(static_cast<std::size_t>(end - key.begin()));
        if (level + 1 < row.depth && !key.starts_with('.')) {
            return {};
        }
        key.remove_prefix(level + 1 < row.depth ? 1 : 0);
    }
    return key.empty() ? std::optional(result) : std::nullopt;
}

core::ErrorPayload refuse(std::string reason) {
    return {core::Error::InvalidInputArg, std::move(reason)};
}

core::Result<void> read_record(const RecordId& id, const cJSON& data, SavedRecords& records) {
    std::vector<std::byte> record(element(id.element).table.size);
    cJSON* errors = nullptr;
    if (serializer::deserialize_record(element(id.element).table, &data, record.data(), &errors) != 0) {
        throw std::bad_alloc();
    }
    const Tree owner(errors);
    if (errors != nullptr) {
        return refuse(fmt::format("record {} {} is refused: {}", element(id.element).suffix, key_of(id),
                                  core::print_line(errors->child).get()));
    }
    records.emplace_back(id, std::move(record));
    return core::success();
}

core::Result<void> read_element(const cJSON& member, SavedRecords& records) {
    const auto rows = all_elements();
    const auto row = std::ranges::find(rows, std::string_view(member.string),
                                       [](const Element& entry) { return std::string_view(entry.suffix); });
    if (row == rows.end()) {
        return refuse(fmt::format("element {} is unknown", member.string));
    }
    const auto id = static_cast<ElementId>(row - rows.begin());
    if (row->depth == 0) {
        return read_record({id, {}}, member, records);
    }
    if (cJSON_IsObject(&member) == 0) {
        return refuse(fmt::format("element {} is no object", member.string));
    }
    for (const cJSON* item = member.child; item != nullptr; item = item->next) {
        const auto record_id = parse_key(id, item->string);
        if (!record_id) {
            return refuse(fmt::format("element {} has no record {}", member.string, item->string));
        }
        BOOST_OUTCOME_TRYV(read_record(*record_id, *item, records));
    }
    return core::success();
}

bool has_number(const cJSON& object, const char* key, double number) {
    const auto* value = cJSON_GetObjectItemCaseSensitive(&object, key);
    return cJSON_IsNumber(value) != 0 && value->valuedouble == number;
}

core::Result<void> check_frame(const cJSON& file, const cJSON* records) {
    const auto* format = cJSON_GetObjectItemCaseSensitive(&file, "format");
    if (cJSON_IsString(format) == 0 || std::string_view(format->valuestring) != format_name) {
        return refuse("it is no saved configuration");
    }
    if (!has_number(file, "version", format_version)) {
        return refuse(fmt::format("its version is not {}", format_version));
    }
    if (cJSON_IsObject(records) == 0 || !has_number(file, "crc32", checksum(core::print_line(records).get()))) {
        return refuse("its checksum is wrong");
    }
    return core::success();
}

} // namespace

std::string print_saved_configuration(const Records& records) {
    std::string text = "{";
    std::optional<ElementId> open; // the table whose records are being written
    for (const auto& id : records.list(Store::running)) {
        const auto& row = element(id.element);
        if (open != id.element) {
            text += fmt::format(R"({}{}"{}":{})", open && element(*open).depth > 0 ? "}" : "", open ? "," : "",
                                row.suffix, row.depth > 0 ? "{" : "");
        } else {
            text += ",";
        }
        open = id.element;
        if (row.depth > 0) {
            text += fmt::format(R"("{}":)", key_of(id));
        }
        text += print_record(id, records.running(id));
    }
    text += open && element(*open).depth > 0 ? "}}" : "}";
    return fmt::format(R"({{"format":"{}","version":{},"crc32":{},"records":{}}})"
                       "\n",
                       format_name, format_version, checksum(text), text);
}

core::Result<SavedRecords> parse_saved_configuration(std::string_view text) {
    const Tree file(cJSON_ParseWithLength(text.data(), text.size()));
    if (!file) {
        return refuse("it is no JSON text");
    }
    const auto* contents = cJSON_GetObjectItemCaseSensitive(file.get(), "records");
    BOOST_OUTCOME_TRYV(check_frame(*file, contents));
    SavedRecords records;
    for (const cJSON* member = contents->child; member != nullptr; member = member->next) {
        BOOST_OUTCOME_TRYV(read_element(*member, records));
    }
    return records;
}

} // namespace xpon::cfgdb
