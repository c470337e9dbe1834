#include "gateway/http/percent_encoding.hpp"

#include <algorithm>
#include <charconv>

namespace xpon::gateway {

std::optional<std::string> percent_decoded(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            decoded += text[i];
            continue;
        }
        unsigned char byte = 0;
        const auto digits = text.substr(i + 1, 2);
        const auto* end = digits.data() + digits.size();
        if (digits.size() != 2 || std::from_chars(digits.data(), end, byte, 16).ptr != end) {
            return std::nullopt;
        }
        decoded += static_cast<char>(byte);
        i += 2;
    }
    return decoded;
}

std::optional<std::string> query_parameter(std::string_view query, std::string_view name) {
    while (!query.empty()) {
        const auto end = std::min(query.find('&'), query.size());
        const auto pair = query.substr(0, end);
        if (pair.substr(0, pair.find('=')) == name) {
            std::string value(pair.substr(std::min(name.size() + 1, pair.size())));
            std::ranges::replace(value, '+', ' ');
            return percent_decoded(value).value_or("");
        }
        query.remove_prefix(std::min(end + 1, query.size()));
    }
    return std::nullopt;
}

} // namespace xpon::gateway
