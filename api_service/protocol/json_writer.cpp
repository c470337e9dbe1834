#include "api_service/protocol/json_writer.hpp"

#include "api_service/protocol/json_scalars.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

namespace xpon::api_service {
namespace {

std::string_view text_of(const char* text) {
    return text == nullptr ? std::string_view() : text;
}

constexpr std::size_t large_text = 64UL * 1024;      // bytes, and below
constexpr std::size_t most_kept = 2UL * 1024 * 1024; // what all ONTs of a full plant are configured as

thread_local std::string spare; // NOLINT(cppcoreguidelines-avoid-non-const-global-variables): empty, or what was kept

} // namespace

void JsonWriter::begin_object() {
    begin_value();
    append("{\n");
    ++depth_;
    is_first_ = true;
}

void JsonWriter::end_object() {
    if (!is_first_) {
        append("\n");
    }
    --depth_;
    begin_line(depth_);
    append("}");
    is_first_ = false;
}

void JsonWriter::begin_array() {
    begin_value();
    append("[");
    ++depth_;
    is_first_ = true;
}

void JsonWriter::end_array() {
    --depth_;
    append("]");
    is_first_ = false;
}

void JsonWriter::key(std::string_view key) {
    if (!std::exchange(is_first_, false)) {
        append(",\n");
    }
    begin_line(depth_);
    append_quoted(key);
    append(":\t");
    has_key_ = true;
}

void JsonWriter::text(std::string_view value) {
    begin_value();
    append_quoted(value);
}

void JsonWriter::boolean(bool value) {
    begin_value();
    append(value ? "true" : "false");
}

void JsonWriter::number(double value) {
    begin_value();
    cJSON number{};
    cJSON_SetNumberValue(&number, value);
    append_number(number);
}

void JsonWriter::raw(std::string json) {
    begin_value();
    if (json.size() < used_) {
        return append(json);
    }
    json.insert(0, text_, 0, used_);
    text_ = std::move(json);
    used_ = text_.size();
}

bool JsonWriter::tree(const cJSON* tree) {
    begin_value();
    return tree != nullptr && append_tree(*tree);
}

std::string JsonWriter::take() && {
    text_.resize(used_);
    return std::move(text_);
}

void JsonWriter::begin_value() {
    if (!std::exchange(has_key_, false) && !std::exchange(is_first_, false)) {
        append(", ");
    }
}

void JsonWriter::begin_line(std::size_t depth) {
    constexpr std::string_view usual_depths = "\t\t\t\t\t\t\t\t"; // up to
    if (depth <= usual_depths.size()) {
        std::memcpy(room(usual_depths.size()), usual_depths.data(), usual_depths.size());
    } else {
        std::memset(room(depth), '\t', depth);
    }
    used_ += depth;
}

void JsonWriter::append(std::string_view piece) {
    used_ += piece.copy(room(piece.size()), piece.size());
}

void JsonWriter::append_quoted(std::string_view value) {
    constexpr std::size_t largest_piece = 1024; // room is made for the worst case
    append("\"");
    for (std::size_t at = 0; at < value.size(); at += largest_piece) {
        append_escaped(value.substr(at, largest_piece));
    }
    append("\"");
}

void JsonWriter::append_escaped(std::string_view piece) {
    char* const begin = room(longest_escape * piece.size());
    used_ += static_cast<std::size_t>(write_escaped(begin, piece) - begin);
}

void JsonWriter::append_number(const cJSON& number) {
    char* const begin = room(longest_number);
    used_ += static_cast<std::size_t>(write_number(begin, number) - begin);
}

bool JsonWriter::append_tree(const cJSON& tree) {
    constexpr int type_mask = 0xFF;
    switch (tree.type & type_mask) {
    case cJSON_NULL:
        append("null");
        return true;
    case cJSON_False:
        append("false");
        return true;
    case cJSON_True:
        append("true");
        return true;
    case cJSON_Number:
        append_number(tree);
        return true;
    case cJSON_String:
        append_quoted(text_of(tree.valuestring));
        return true;
    case cJSON_Raw:
        append(text_of(tree.valuestring));
        return tree.valuestring != nullptr;
    case cJSON_Array:
        return append_array(tree);
    case cJSON_Object:
        return append_object(tree);
    default:
        return false;
    }
}

bool JsonWriter::append_array(const cJSON& array) {
    append("[");
    ++depth_;
    for (const cJSON* item = array.child; item != nullptr; item = item->next) {
        if (!append_tree(*item)) {
            return false;
        }
        if (item->next != nullptr) {
            append(", ");
        }
    }
    --depth_;
    append("]");
    return true;
}

bool JsonWriter::append_object(const cJSON& object) {
    append("{\n");
    ++depth_;
    for (const cJSON* member = object.child; member != nullptr; member = member->next) {
        begin_line(depth_);
        append_quoted(text_of(member->string));
        append(":\t");
        if (!append_tree(*member)) {
            return false;
        }
        append(member->next != nullptr ? ",\n" : "\n");
    }
    --depth_;
    begin_line(depth_);
    append("}");
    return true;
}

void JsonWriter::grow(std::size_t size) {
    // Large blocks cost only what is written of them, moving what has been written costs all of it.
    constexpr std::size_t least = 1024;
    const auto needed = used_ + size;
    if (needed > text_.capacity()) {
        if (needed >= large_text && needed <= spare.capacity()) {
            spare.assign(text_, 0, used_);
            text_ = std::exchange(spare, {});
        } else {
            const auto times = text_.capacity() < large_text ? 2U : 4U;
            text_.reserve(std::max({needed, least, times * text_.capacity()}));
        }
    }
    // Each byte is cleared once, just before it is written.
    text_.resize(std::min(text_.capacity(), needed + std::clamp(used_, least, large_text)));
}

void JsonWriter::reuse(std::string text) {
    if (text.size() >= large_text && text.size() <= most_kept && spare.capacity() < text.capacity()) {
        spare = std::move(text);
    }
}

} // namespace xpon::api_service
