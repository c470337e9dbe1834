#include "xpon/core/printable_text.hpp"

#include <algorithm>
#include <iterator>

#include <boost/locale/utf.hpp>
#include <fmt/format.h>

namespace xpon::core {
namespace {

namespace utf = boost::locale::utf;

struct CodeRange {
    utf::code_point first;
    utf::code_point last;
};

constexpr CodeRange unprintable[] = {
    {0x0000, 0x001f}, // C0
    {0x007f, 0x009f}, // DEL, C1
    {0x200e, 0x200f}, // marks of the direction of writing
    {0x2028, 0x202e}, // separators of lines and paragraphs, embedded directions
    {0x2066, 0x2069}, // isolated directions
    {0xfdd0, 0xfdef}, // noncharacters
    {0xfffe, 0xffff}, // noncharacters
};

struct Character {
    std::size_t size; ///< bytes
    bool printable;   ///< a malformed character is one byte and not printable
};

Character first_character(std::string_view text) {
    const char* end = text.data();
    const auto code = utf::utf_traits<char>::decode(end, text.data() + text.size());
    if (!utf::is_valid_codepoint(code)) {
        return {.size = 1, .printable = false};
    }
    const bool printable = std::ranges::none_of(
        unprintable, [code](const CodeRange& range) { return code >= range.first && code <= range.last; });
    return {.size = static_cast<std::size_t>(end - text.data()), .printable = printable};
}

/// How many bytes at the beginning are printable characters of ASCII, as mostly all are.
std::size_t plain_beginning(std::string_view text, std::string_view also_escaped) {
    const auto* const end = std::ranges::find_if(text, [&](char character) {
        return character < ' ' || character > '~' || also_escaped.find(character) != std::string_view::npos;
    });
    return static_cast<std::size_t>(end - text.begin());
}

struct Escaped {
    std::string text;
    std::size_t read; ///< bytes of the original
};

Escaped escape(std::string_view text, std::size_t limit, std::string_view also_escaped) {
    Escaped escaped{.text = {}, .read = 0};
    for (;;) {
        const auto plain = plain_beginning(text.substr(escaped.read, limit - escaped.read), also_escaped);
        escaped.text += text.substr(escaped.read, plain);
        escaped.read += plain;
        if (escaped.read == text.size()) {
            return escaped;
        }
        const auto character = first_character(text.substr(escaped.read));
        if (escaped.read + character.size > limit) {
            return escaped;
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
}

std::string size_when_cut(const Escaped& escaped, std::size_t size) {
    return escaped.read < size ? fmt::format("..({} bytes)", size) : "";
}

} // namespace

std::string printable_text(std::string_view text) {
    return printable_text(text, text.size());
}

std::string printable_text(std::string_view text, std::size_t limit) {
    if (text.size() <= limit && plain_beginning(text, "") == text.size()) {
        return std::string(text);
    }
    const auto escaped = escape(text, limit, "");
    return escaped.text + size_when_cut(escaped, text.size());
}

std::string quoted_text(std::string_view text, std::size_t limit) {
    const auto escaped = escape(text, limit, "\"\\");
    return fmt::format("\"{}\"{}", escaped.text, size_when_cut(escaped, text.size()));
}

} // namespace xpon::core
