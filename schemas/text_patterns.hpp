#pragma once

#include "serializer/field.hpp"

#include <string>
#include <string_view>

// Regular expressions [ECMA 262] of what the daemon takes as a text. They are anchored, and fit Python's `re`, too.

namespace xpon::schemas {

/// The expression, which ends with `$`, for engines whose `$` also stands before a line feed at the end.
std::string anchored(std::string_view pattern);

std::string pattern_of(serializer::Characters characters);

/// Dotted quads from one address to another: all, or those between A.0.C.0 and B.255.255.255.
std::string ipv4_pattern(std::uint32_t first, std::uint32_t last);

std::string mac_pattern();

/// A list of numbers and ranges, each from 1 to 4094, such as "1-4,7"; or nothing. That ranges ascend is not in it.
std::string vlan_list_pattern();

/// The obfuscated form of a plain text of so many bytes; or nothing.
std::string secret_pattern(std::size_t least, std::size_t most);

} // namespace xpon::schemas
