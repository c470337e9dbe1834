#pragma once

#include <bitset>
#include <cstdint>
#include <string>
#include <string_view>

namespace xpon::ranges {

/// Numbers of ports, ONTs or VLANs: bit n = number n.
using NumberSet = std::bitset<4096>;

/// Adds the numbers of a list such as "1-4,7", which may name one as often as it likes: the time follows the length of
/// the text. 0, or the errno value of the first fault: EINVAL for bad syntax, which an empty list is, too, ERANGE for
/// a number outside 1 to `largest`.
int parse_number_list(std::string_view list, std::uint32_t largest, NumberSet& numbers);

/// The shortest list: ascending, runs of two and more as ranges; "" for the empty set.
std::string format_number_list(const NumberSet& numbers);

} // namespace xpon::ranges
