#include "xpon/core/printable_text.hpp"

#include <algorithm>
#include <array>
#include <iterator>

#include <fmt/format.h>

namespace xpon::core {
namespace {

struct CodeRange {
    char32_t first;
    char32_t last;
};

constexpr CodeRange unprintable[] = {
    {0x0000, 0x001f},     // C0
    {0x007f, 0x009f},     // DEL, C1
    {0x200e, 0x200f},     // marks of the direction of writing
    {0x2028, 0x202e},     // separators of lines and paragraphs, embedded directions
    {0x2066, 0x2069},     // isolated directions
    {0xd800, 0xdfff},     // surrogates
    {0xfdd0, 0xfdef},     // noncharacters
    {0xfffe, 0xffff},     // noncharacters
    {0x110000, 0x1fffff}, // beyond Unicode
};

struct Character {
    std::size_t size; ///< bytes
    bool printable;   ///< a malformed character is one byte and not printable
};

std::size_t announced_size(unsigned char lead) {
    if (lead < 0x80) {
        return 1;
    }
    if (lead < 0xc0 || lead > 0xf7) {
        return 0;
    }
    return lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : 4;
}

Character first_character(std::string_view text) {
    static constexpr std::array<char32_t, 5> least_code_of_size{0, 0, 0x80, 0x800, 0x10000};
    constexpr Character malformed{.size = 1, .printable = false};

    const auto lead = static_cast<unsigned char>(text.front());
    const auto size = announced_size(lead);
    if (size == 0 || size > text.size()) {
        return malformed;
    }
    char32_t code = size == 1 ? lead : lead & (0x7fU >> size);
    for (const char byte : text.substr(1, size - 1)) {
        const auto continuation = static_cast<unsigned char>(byte);
        if ((continuation & 0xc0U) != 0x80U) {
            return malformed;
        }
        code = (code << 6U) | (continuation & 0x3fU);
    }
    if (code < least_code_of_size.at(size)) {
        return malformed;
    }
    const bool printable = std::ranges::none_of(
        unprintable, [code](const CodeRange& range) { return code >= range.first && code <= range.last; });
    return {.size = size, .printable = printable};
}

struct Escaped {
    std::string text;
    std::size_t read; ///< bytes of the original
};

Escaped escape(std::string_view text, std::size_t limit, std::string_view also_escaped) {
    Escaped escaped{.text = {}, .read = 0};
    while (escaped.read < text.size()) {
        const auto character = first_character(text.substr(escaped.read));
        if (escaped.read + character.size > limit) {
            break;
        }
        const auto bytes = text.substr(escaped.read, character.size);
        if (character.printable && also_escaped.find(bytes) == std::string_view::npos) {
            escaped.text += bytes;
        } else {
            for (const char byte : bytes) {
                fmt::format_to(std::back_inserter(escaped.text), "\\x{:02X}", static_cast<unsigned char>(byte));
            }
        }
        escaped.read += character.size;
    }
    return escaped;
}

std::string size_when_cut(const Escaped& escaped, std::size_t size) {
    return escaped.read < size ? fmt::format("..({} bytes)", size) : "";
}

} // namespace

std::string printable_text(std::string_view text) {
    return printable_text(text, text.size());
}

std::string printable_text(std::string_view text, std::size_t limit) {
    const auto escaped = escape(text, limit, "");
    return escaped.text + size_when_cut(escaped, text.size());
}

std::string quoted_text(std::string_view text, std::size_t limit) {
    const auto escaped = escape(text, limit, "\"\\");
    return fmt::format("\"{}\"{}", escaped.text, size_when_cut(escaped, text.size()));
}

} // namespace xpon::core
