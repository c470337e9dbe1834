#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

namespace xpon::ranges {

/// Walks a list such as "1-4,7" and calls `found` with every number, as often as the list names it. 0, or the errno
/// value of the fault: EINVAL for bad syntax, ERANGE for a number outside 1 to `largest`. Numbers before the fault
/// have been found by then.
int for_each_number(std::string_view list, std::uint32_t largest, const std::function<void(std::uint32_t)>& found);

} // namespace xpon::ranges
