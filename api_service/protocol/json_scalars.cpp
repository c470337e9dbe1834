#include "api_service/protocol/json_scalars.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

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

char* write_by_bytes(char* end, std::string_view piece) {
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

} // namespace

char* write_escaped(char* begin, std::string_view text) {
    char* end = begin;
    Block block = 0;
    for (; text.size() >= sizeof(block); text.remove_prefix(sizeof(block))) {
        std::memcpy(&block, text.data(), sizeof(block));
        if (has_escapes(block)) {
            end = write_by_bytes(end, text.substr(0, sizeof(block)));
        } else {
            std::memcpy(end, &block, sizeof(block));
            end += sizeof(block);
        }
    }
    return write_by_bytes(end, text);
}

char* write_number(char* begin, const cJSON& number) {
    const double value = number.valuedouble;
    if (!std::isfinite(value)) {
        return std::ranges::copy(std::string_view("null"), begin).out;
    }
    if (value == 0 && std::signbit(value)) {
        // Releases of the library differ here.
        cJSON negative_zero{};
        negative_zero.type = cJSON_Number;
        negative_zero.valuedouble = value;
        cJSON_PrintPreallocated(&negative_zero, begin, longest_number, 1);
        return begin + std::strlen(begin);
    }
    if (value == static_cast<double>(number.valueint)) {
        return std::to_chars(begin, begin + longest_number, number.valueint).ptr;
    }
    return write_real(begin, value);
}

} // namespace xpon::api_service
