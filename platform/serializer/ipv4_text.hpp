#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace xpon::serializer {

/// Dotted decimal without leading zeros; the first octet becomes the most significant.
std::optional<std::uint32_t> parse_ipv4(std::string_view text);
std::string format_ipv4(std::uint32_t address);

} // namespace xpon::serializer
