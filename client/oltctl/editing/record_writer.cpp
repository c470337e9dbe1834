#include "client/oltctl/catalogue/catalogue.hpp"
#include "client/oltctl/editing/record_text.hpp"
#include "xpon/client/serial_number.hpp"

#include <iterator>

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

bool is_list_of_records(const cJSON* value) {
    return cJSON_IsArray(value) != 0 && cJSON_IsObject(value->child) != 0;
}

/// A value in one line, in JSON; a serial as people write it.
std::string value_text(const cJSON* value, const CatalogueField* field) {
    if (field != nullptr && field->form == Form::serial) {
        return fmt::format("\"{}\"", client::serial_text(value));
    }
    return core::print_line(value).get();
}

class Writer {
public:
    Writer(std::string_view element, Notation notation) : element_(element), is_json_(notation == Notation::json) {}

    void write_members(const cJSON* record, const std::string& prefix, std::size_t indent, bool with_comments) {
        for (const auto* member = record->child; member != nullptr; member = member->next) {
            const auto key = prefix + member->string;
            if (with_comments) {
                write_comment(key, indent);
            }
            text_ += fmt::format("{:{}}{}:", "", indent,
                                 is_json_ ? fmt::format("\"{}\"", member->string) : std::string(member->string));
            write_value(member, key, indent, with_comments);
            text_ += is_json_ && member->next != nullptr ? ",\n" : "\n";
        }
    }

    void write_record(const std::string& index, const cJSON* record, bool is_last) {
        if (index.empty()) {
            text_ += is_json_ ? "{\n" : "";
            write_members(record, "", is_json_ ? step : 0, true);
            text_ += is_json_ ? "}\n" : "";
            return;
        }
        text_ += fmt::format("{}\"{}\":{}\n", is_json_ ? "  " : "", index, is_json_ ? " {" : "");
        write_members(record, "", is_json_ ? 2 * step : step, is_first_);
        text_ += is_json_ ? fmt::format("  }}{}\n", is_last ? "" : ",") : "";
        is_first_ = false;
    }

    std::string text_;

private:
    static constexpr std::size_t step = 2;

    void write_comment(const std::string& key, std::size_t indent) {
        const auto* const field = find_field(element_, key);
        if (field == nullptr) {
            return;
        }
        const std::string_view initial(field->initial);
        const std::string_view meaning(field->meaning);
        text_ += fmt::format("{:{}}# {}{}{}{}{}\n", "", indent, field->values, initial.empty() ? "" : "; default ",
                             initial, meaning.empty() ? "" : ". ", meaning);
    }

    /// What the items of an empty list would look like.
    void write_item_comments(const std::string& key, std::size_t indent) {
        for (const auto& field : catalogue_fields()) {
            const std::string_view below(field.key);
            if (field.element == element_ && below.starts_with(key + "[].")) {
                text_ += fmt::format("\n{:{}}#   {}: {}", "", indent, below.substr(key.size() + 3), field.values);
            }
        }
    }

    void write_value(const cJSON* value, const std::string& key, std::size_t indent, bool with_comments) {
        if (cJSON_IsObject(value) != 0) {
            text_ += is_json_ ? " {\n" : "\n";
            write_members(value, key + ".", indent + step, with_comments);
            text_ += is_json_ ? fmt::format("{:{}}}}", "", indent) : "";
            text_.erase(text_.find_last_not_of('\n') + 1);
            return;
        }
        if (!is_list_of_records(value)) {
            text_ += " " + value_text(value, find_field(element_, key));
            if (with_comments && !is_json_ && cJSON_IsArray(value) != 0 && value->child == nullptr) {
                write_item_comments(key, indent);
            }
            return;
        }
        text_ += is_json_ ? " [" : "";
        unsigned position = 0;
        for (const auto* item = value->child; item != nullptr; item = item->next, ++position) {
            text_ += fmt::format("\n{:{}}{}\n", "", indent + step, is_json_ ? "{" : fmt::format("- # {}", position));
            write_members(item, fmt::format("{}.{}.", key, position), indent + 2 * step,
                          with_comments && position == 0);
            text_ += is_json_ ? fmt::format("{:{}}}}{}", "", indent + step, item->next == nullptr ? "" : ",") : "";
            text_.erase(text_.find_last_not_of('\n') + 1);
        }
        text_ += is_json_ ? fmt::format("\n{:{}}]", "", indent) : "";
    }

    std::string_view element_;
    bool is_json_;
    bool is_first_ = true;
};

} // namespace

std::string text_of(std::string_view element, const RecordTrees& records, Notation notation) {
    Writer writer(element, notation);
    const bool is_json_table = notation == Notation::json && !records.begin()->first.empty();
    writer.text_ += is_json_table ? "{\n" : "";
    for (auto record = records.begin(); record != records.end(); ++record) {
        writer.write_record(record->first, record->second.get(), std::next(record) == records.end());
    }
    writer.text_ += is_json_table ? "}\n" : "";
    return writer.text_;
}

} // namespace xpon::oltctl
