#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace xpon::gateway {

/// Percent-encoding undone (RFC 3986, 2.1). Empty when a % is not followed by two hexadecimal digits.
std::optional<std::string> percent_decoded(std::string_view text);

/// The value of a parameter in a query of the form a=1&b=2, decoded; + is a blank. Empty without the parameter; what
/// cannot be decoded is an empty text.
std::optional<std::string> query_parameter(std::string_view query, std::string_view name);

} // namespace xpon::gateway
