#include "logger/printable.hpp"

#include <cstddef>
#include <iterator>

#include <fmt/format.h>

namespace xpon::logger {
namespace {

/// Bytes of the control character at the front of `text`; 0 when there is another character.
std::size_t control_character_size(std::string_view text) {
    const auto byte = [text](std::size_t at) { return static_cast<unsigned char>(text.at(at)); };
    if (byte(0) < 0x20 || byte(0) == 0x7f) {
        return 1;
    }
    return byte(0) == 0xc2 && text.size() > 1 && byte(1) >= 0x80 && byte(1) < 0xa0 ? 2 : 0;
}

} // namespace

std::string printable(std::string_view text) {
    std::string line;
    line.reserve(text.size());
    while (!text.empty()) {
        const auto size = control_character_size(text);
        for (const char byte : text.substr(0, size)) {
            fmt::format_to(std::back_inserter(line), "\\x{:02X}", static_cast<unsigned char>(byte));
        }
        if (size == 0) {
            line += text.front();
        }
        text.remove_prefix(size == 0 ? 1 : size);
    }
    return line;
}

} // namespace xpon::logger
