#include "api_service/protocol/strings.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace xpon::api_service {

std::vector<std::string> split_string(std::string_view text, char separator) {
    std::vector<std::string> pieces;
    for (;;) {
        const auto end = text.find(separator);
        pieces.emplace_back(text.substr(0, end));
        if (end == std::string_view::npos) {
            return pieces;
        }
        text.remove_prefix(end + 1);
    }
}

std::string join_strings(std::span<const std::string> pieces, std::string_view separator) {
    return fmt::format("{}", fmt::join(pieces, separator));
}

} // namespace xpon::api_service
