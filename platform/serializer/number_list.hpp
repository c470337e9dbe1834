#pragma once

#include <bitset>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace xpon::serializer {

/// VLAN numbers 1..4094; bit n = VLAN n.
using NumberSet = std::bitset<4096>;

/// The list syntax "1-4,7"; empty for bad syntax and for numbers outside 1..4094. "" is the empty set. The time follows
/// the length of the text, whatever its ranges.
std::optional<NumberSet> parse_number_list(std::string_view text);

/// The shortest text: ascending, runs of two and more as ranges.
std::string format_number_list(const NumberSet& numbers);

} // namespace xpon::serializer
