#include "ranges/number_list.hpp"

#include <cerrno>
#include <charconv>
#include <system_error>

namespace xpon::ranges {
namespace {

/// 0, or the errno value of the fault.
int parse_number(std::string_view text, std::uint32_t largest, std::uint32_t& number) {
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (fault == std::errc::invalid_argument || end != text.data() + text.size()) {
        return EINVAL;
    }
    return fault == std::errc{} && number >= 1 && number <= largest ? 0 : ERANGE;
}

int parse_item(std::string_view item, std::uint32_t largest, const std::function<void(std::uint32_t)>& found) {
    const auto dash = item.find('-');
    std::uint32_t first = 0;
    std::uint32_t last = 0;
    const int first_fault = parse_number(item.substr(0, dash), largest, first);
    const int last_fault =
        dash == std::string_view::npos ? first_fault : parse_number(item.substr(dash + 1), largest, last);
    // Bad syntax anywhere in an item counts for more than a number that is too large.
    if (first_fault != 0 || last_fault != 0) {
        return first_fault == EINVAL || last_fault == EINVAL ? EINVAL : ERANGE;
    }
    last = dash == std::string_view::npos ? first : last;
    if (first > last) {
        return EINVAL;
    }
    for (auto number = first; number <= last; ++number) {
        found(number);
    }
    return 0;
}

} // namespace

int for_each_number(std::string_view list, std::uint32_t largest, const std::function<void(std::uint32_t)>& found) {
    for (;;) {
        const auto comma = list.find(',');
        if (const int fault = parse_item(list.substr(0, comma), largest, found); fault != 0) {
            return fault;
        }
        if (comma == std::string_view::npos) {
            return 0;
        }
        list.remove_prefix(comma + 1);
    }
}

} // namespace xpon::ranges
