#include "api_service/protocol/json_writer.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <utility>

namespace xpon::api_service {
namespace {

/// By byte: 0 for one that stands for itself in a string, the letter of its escape, or 'u' for the long form.
constexpr auto escapes = [] {
    std::array<char, 256> letters{};
    std::fill_n(letters.begin(), 0x20, 'u');
    letters['"'] = '"';
    letters['\\'] = '\\';
    letters['\b'] = 'b';
    letters['\f'] = 'f';
    letters['\n'] = 'n';
    letters['\r'] = 'r';
    letters['\t'] = 't';
    return letters;
}();

constexpr char escape_of(char character) {
    return escapes[static_cast<unsigned char>(character)];
}

using Block = std::uint64_t;

constexpr Block in_each_byte(unsigned char byte) {
    return ~Block{0} / 0xFF * byte;
}

/// Whether one of the bytes does not stand for itself: a control character, '"' or '\\'. A byte without its highest bit
/// has it after the subtraction when it was less than what was taken off.
constexpr bool has_escapes(Block block) {
    const auto quotes = block ^ in_each_byte('"');
    const auto backslashes = block ^ in_each_byte('\\');
    const auto found = ((block - in_each_byte(0x20)) & ~block) | ((quotes - in_each_byte(1)) & ~quotes) |
                       ((backslashes - in_each_byte(1)) & ~backslashes);
    return (found & in_each_byte(0x80)) != 0;
}

/// Writes to `end`; returns the new one.
char* escape(std::string_view piece, char* end) {
    for (const char character : piece) {
        const char escape = escape_of(character);
        if (escape == 0) {
            *end++ = character;
            continue;
        }
        *end++ = '\\';
        *end++ = escape;
        if (escape == 'u') {
            constexpr std::string_view digits = "0123456789abcdef";
            const auto code = static_cast<unsigned char>(character);
            end = std::copy_n("00", 2, end);
            *end++ = digits[code >> 4U];
            *end++ = digits[code & 0xFU];
        }
    }
    return end;
}

constexpr std::size_t longest_escape = std::string_view("\\u001f").size();
constexpr std::size_t longest_number = std::string_view("-1.2345678901234567e-308").size() + 8;

/// cJSON's measure of numbers being the same.
bool are_close(double one, double other) {
    return std::fabs(one - other) <=
           std::max(std::fabs(one), std::fabs(other)) * std::numeric_limits<double>::epsilon();
}

constexpr int usual_digits = 15; // as many as a double keeps of any decimal number

/// Writes a number with so few digits that its shortest form is also the one of `usual_digits`; returns its end, null
/// when it is none of these, as few of what devices measure are.
char* write_short_real(char* begin, double value) {
    constexpr double least_fixed = 1e-4; // smaller ones are written with an exponent, and such with more digits
    constexpr double great = 1e15;
    if (const double size = std::fabs(value); size < least_fixed || size >= great) {
        return nullptr;
    }
    constexpr auto longest = usual_digits + std::string_view("-.").size();
    const auto [end, error] = std::to_chars(begin, begin + longest, value, std::chars_format::fixed);
    const auto digits = std::count_if(begin, end, [](char character) { return character >= '0' && character <= '9'; });
    return error == std::errc() && digits <= usual_digits ? end : nullptr;
}

/// Writes a finite number to `longest_number` bytes at `begin`; returns its end.
char* write_real(char* begin, double value) {
    if (char* const end = write_short_real(begin, value)) {
        return end;
    }
    constexpr int all_digits = 17;
    char* const limit = begin + longest_number;
    char* end = std::to_chars(begin, limit, value, std::chars_format::general, usual_digits).ptr;
    double read = 0;
    if (std::from_chars(begin, end, read).ec == std::errc::result_out_of_range) {
        read = std::copysign(std::numeric_limits<double>::infinity(), value); // rounded up from the greatest
    }
    return are_close(read, value) ? end
                                  : std::to_chars(begin, limit, value, std::chars_format::general, all_digits).ptr;
}

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
    char* end = begin;
    Block block = 0;
    for (; piece.size() >= sizeof(block); piece.remove_prefix(sizeof(block))) {
        std::memcpy(&block, piece.data(), sizeof(block));
        if (has_escapes(block)) {
            end = escape(piece.substr(0, sizeof(block)), end);
        } else {
            std::memcpy(end, &block, sizeof(block));
            end += sizeof(block);
        }
    }
    used_ += static_cast<std::size_t>(escape(piece, end) - begin);
}

void JsonWriter::append_number(const cJSON& number) {
    char* const begin = room(longest_number);
    char* end = begin;
    const double value = number.valuedouble;
    if (!std::isfinite(value)) {
        return append("null");
    }
    if (value == 0 && std::signbit(value)) {
        // Releases of the library differ here.
        cJSON negative_zero{};
        negative_zero.type = cJSON_Number;
        negative_zero.valuedouble = value;
        cJSON_PrintPreallocated(&negative_zero, begin, longest_number, 1);
        end += std::strlen(begin);
    } else if (value == static_cast<double>(number.valueint)) {
        end = std::to_chars(begin, begin + longest_number, number.valueint).ptr;
    } else {
        end = write_real(begin, value);
    }
    used_ += static_cast<std::size_t>(end - begin);
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
