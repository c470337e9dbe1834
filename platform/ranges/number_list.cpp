#include "ranges/number_list.hpp"

#include <cerrno>
#include <charconv>
#include <cstddef>
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

int parse_item(std::string_view item, std::uint32_t largest, NumberSet& numbers) {
    const auto dash = item.find('-');
    std::uint32_t first = 0;
    std::uint32_t last = 0;
    const int first_fault = parse_number(item.substr(0, dash), largest, first);
    const int last_fault = parse_number(dash == std::string_view::npos ? item : item.substr(dash + 1), largest, last);
    // Bad syntax anywhere in an item counts for more than a number that is too large.
    if (first_fault != 0 || last_fault != 0) {
        return first_fault == EINVAL || last_fault == EINVAL ? EINVAL : ERANGE;
    }
    if (first > last) {
        return EINVAL;
    }
    numbers |= ~NumberSet() >> (numbers.size() - 1 - (last - first)) << first;
    return 0;
}

} // namespace

int parse_number_list(std::string_view list, std::uint32_t largest, NumberSet& numbers) {
    for (;;) {
        const auto comma = list.find(',');
        if (const int fault = parse_item(list.substr(0, comma), largest, numbers); fault != 0) {
            return fault;
        }
        if (comma == std::string_view::npos) {
            return 0;
        }
        list.remove_prefix(comma + 1);
    }
}

std::string format_number_list(const NumberSet& numbers) {
    std::string text;
    for (std::size_t first = 0; first < numbers.size(); ++first) {
        if (!numbers[first]) {
            continue;
        }
        auto last = first;
        while (last + 1 < numbers.size() && numbers[last + 1]) {
            ++last;
        }
        text += text.empty() ? "" : ",";
        text += std::to_string(first);
        if (last > first) {
            text += "-" + std::to_string(last);
        }
        first = last;
    }
    return text;
}

} // namespace xpon::ranges
