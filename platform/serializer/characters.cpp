#include "serializer/characters.hpp"

#include "serializer/ipv4_text.hpp"
#include "xpon/core/utf8.hpp"

#include <algorithm>

namespace xpon::serializer {
namespace {

using Position = std::optional<std::size_t>;

// The C library's own tests depend on the locale.
constexpr bool is_digit(char c) {
    return c >= '0' && c <= '9';
}
constexpr bool is_alphanumeric(char c) {
    return is_digit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
constexpr bool is_hexadecimal(char c) {
    return is_digit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

template <class Predicate>
Position find_not(std::string_view text, Predicate is_allowed) {
    const auto* found = std::ranges::find_if_not(text, is_allowed);
    return found == text.end() ? Position() : static_cast<std::size_t>(found - text.begin());
}

Position find_in_name(std::string_view text) {
    if (!text.empty() && !is_alphanumeric(text.front()) && text.front() != '+') {
        return 0;
    }
    return find_not(text, [](char c) {
        return is_alphanumeric(c) || std::string_view(" _.:/-@+#").find(c) != std::string_view::npos;
    });
}

Position find_in_label(std::string_view text) {
    if (const auto wrong = find_not(text, [](char c) { return is_alphanumeric(c) || c == '-'; })) {
        return wrong;
    }
    if (text.starts_with('-')) {
        return 0;
    }
    return text.ends_with('-') ? Position(text.size() - 1) : Position();
}

Position find_in_host(std::string_view text) {
    constexpr std::size_t longest_label = 63;
    std::string_view label;
    for (std::size_t start = 0; start <= text.size(); start += label.size() + 1) {
        label = text.substr(start, text.find('.', start) - start);
        if (label.empty() || label.size() > longest_label) {
            return start + std::min(label.size(), longest_label);
        }
        if (const auto wrong = find_in_label(label)) {
            return start + *wrong;
        }
    }
    // The last label of a name is never a number: such a text is an address or nothing.
    if (std::ranges::all_of(label, is_digit) && !parse_ipv4(text)) {
        return text.size() - label.size();
    }
    return {};
}

Position find_in_hex(std::string_view text) {
    if (const auto wrong = find_not(text, is_hexadecimal)) {
        return wrong;
    }
    return text.size() % 2 == 0 ? Position() : text.size();
}

} // namespace

std::optional<std::size_t> find_wrong_character(Characters characters, std::string_view text) {
    if (text.empty()) {
        return {};
    }
    switch (characters) {
    case Characters::text:
        return core::find_invalid_utf8(text);
    case Characters::ascii:
        return find_not(text, [](char c) { return c >= 0x20 && c <= 0x7E; });
    case Characters::name:
        return find_in_name(text);
    case Characters::host:
        return find_in_host(text);
    case Characters::label:
        return find_in_label(text);
    case Characters::hex:
        break;
    }
    return find_in_hex(text);
}

std::string_view name_of(Characters characters) {
    switch (characters) {
    case Characters::text:
        return "text";
    case Characters::ascii:
        return "ascii";
    case Characters::name:
        return "name";
    case Characters::host:
        return "host";
    case Characters::label:
        return "label";
    case Characters::hex:
        break;
    }
    return "hex";
}

} // namespace xpon::serializer
