#include "xpon/core/utf8.hpp"

#include <boost/locale/utf.hpp>

namespace xpon::core {
namespace {

namespace utf = boost::locale::utf;

bool is_control(utf::code_point point) {
    return point < 0x20 || (point >= 0x7F && point < 0xA0);
}

} // namespace

std::optional<std::size_t> find_invalid_utf8(std::string_view text) {
    for (const char* at = text.data(); at != text.data() + text.size();) {
        const auto* const character = at;
        const auto point = utf::utf_traits<char>::decode(at, text.data() + text.size());
        if (!utf::is_valid_codepoint(point) || is_control(point)) {
            return static_cast<std::size_t>(character - text.data());
        }
    }
    return {};
}

bool is_valid_utf8(std::string_view text) {
    for (const char* at = text.data(); at != text.data() + text.size();) {
        if (!utf::is_valid_codepoint(utf::utf_traits<char>::decode(at, text.data() + text.size()))) {
            return false;
        }
    }
    return true;
}

std::string replace_invalid_utf8(std::string_view text) {
    std::string result;
    for (const char* at = text.data(); at != text.data() + text.size();) {
        const auto* const character = at;
        if (utf::is_valid_codepoint(utf::utf_traits<char>::decode(at, text.data() + text.size()))) {
            result.append(character, at);
        } else {
            result += "\xEF\xBF\xBD";
            at = character + 1;
        }
    }
    return result;
}

} // namespace xpon::core
