#include "cfgdb/saved_configuration.hpp"

#include "cfgdb/checksum.hpp"
#include "serializer/cjson_tree.hpp"
#include "serializer/forgiving_json.hpp"
#include "serializer/record_json.hpp"
#include "xpon/core/json_tree.hpp"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <optional>
#include <system_error>

#include <fmt/format.h>

namespace xpon::cfgdb {
namespace {

using serializer::owned;
using serializer::Tree;

constexpr const char* format_name = "olt-config";
constexpr int format_version = 1;
constexpr std::string_view records_key = R"("records":)";

std::string print_beginning(std::uint32_t sum) {
    return fmt::format(R"({{"format":"{}","version":{},"crc32":{},{})", format_name, format_version, sum, records_key);
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
    if (owner) { // no reader would take it: better no file than this one
        throw std::system_error(
            EIO, std::generic_category(),
            fmt::format("{} cannot be written: {}", name_of(id), core::print_line(owner->child).get()));
    }
    return core::print_line(target.get()).get();
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

/// What one saved file holds, as it is read.
class Reader {
public:
    explicit Reader(StartReport& report) : report_(report) {}

    void read_element(cJSON& member) {
        const auto rows = all_elements();
        const auto row = std::ranges::find(rows, std::string_view(member.string),
                                           [](const Element& entry) { return std::string_view(entry.suffix); });
        if (row == rows.end()) {
            return report_.add(fmt::format("Element {} is unknown and skipped", shortened(member.string)));
        }
        const auto id = static_cast<ElementId>(row - rows.begin());
        if (row->depth == 0) {
            return read_record({id, {}}, member);
        }
        if (cJSON_IsObject(&member) == 0) {
            return report_.add(fmt::format("Element {} is no object and skipped", member.string));
        }
        for (cJSON* item = member.child; item != nullptr; item = item->next) {
            if (const auto record_id = parse_key(id, item->string)) {
                read_record(*record_id, *item);
            } else {
                report_.add(fmt::format("Element {} has no record {}, which is skipped", member.string,
                                        shortened(item->string)));
            }
        }
    }

    RecordList take_records() {
        return std::move(records_);
    }

private:
    static std::string_view shortened(std::string_view name) {
        return name.substr(0, 64);
    }

    void read_record(const RecordId& id, cJSON& data) {
        const auto& table = element(id.element).table;
        std::vector<std::byte> record(table.size);
        for (const auto& line : serializer::read_what_fits(table, data, record.data())) {
            report_.add(id, line);
        }
        records_.emplace_back(id, std::move(record));
    }

    StartReport& report_;
    RecordList records_;
};

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
    return print_beginning(checksum(text)) + text + "}\n";
}

core::Result<RecordList> parse_saved_configuration(std::string_view text, StartReport& report) {
    const Tree file(cJSON_ParseWithLength(text.data(), text.size()));
    if (!file) {
        return refuse("it is no JSON text");
    }
    const auto* contents = cJSON_GetObjectItemCaseSensitive(file.get(), "records");
    BOOST_OUTCOME_TRYV(check_frame(*file, contents));
    Reader reader(report);
    for (cJSON* member = contents->child; member != nullptr; member = member->next) {
        reader.read_element(*member);
    }
    return reader.take_records();
}

bool is_intact(std::string_view text) {
    // As this program prints it; another layout of the same takes the long way.
    const auto beginning = text.substr(0, text.find(records_key) + records_key.size());
    const auto end = text.rfind('}');
    if (end != std::string_view::npos && beginning.size() < end) {
        const auto records = text.substr(beginning.size(), end - beginning.size());
        if (beginning == print_beginning(checksum(records))) {
            return true;
        }
    }
    const Tree file(cJSON_ParseWithLength(text.data(), text.size()));
    return file && check_frame(*file, cJSON_GetObjectItemCaseSensitive(file.get(), "records")).has_value();
}

} // namespace xpon::cfgdb
