#include "serializer/number_list.hpp"

#include <array>
#include <charconv>

namespace xpon::serializer {
namespace {

constexpr std::size_t smallest = 1;
constexpr std::size_t largest = 4094;

std::optional<std::size_t> parse_number(std::string_view text) {
    std::size_t number = 0;
    const auto [end, fault] = std::from_chars(text.begin(), text.end(), number);
    if (fault != std::errc() || end != text.end() || number < smallest || number > largest) {
        return {};
    }
    return number;
}

} // namespace

std::optional<NumberSet> parse_number_list(std::string_view text) {
    NumberSet numbers;
    if (text.empty()) {
        return numbers;
    }
    // Ranges may overlap a hundred thousand times: how many begin and end at a number is counted first.
    std::array<int, largest + 2> steps{};
    for (std::size_t start = 0; start <= text.size();) {
        const auto item = text.substr(start, text.find(',', start) - start);
        const auto dash = item.find('-');
        const auto first = parse_number(item.substr(0, dash));
        const auto last = dash == std::string_view::npos ? first : parse_number(item.substr(dash + 1));
        if (!first || !last || *first > *last) {
            return {};
        }
        ++steps[*first];
        --steps[*last + 1];
        start += item.size() + 1;
    }
    int depth = 0;
    for (std::size_t number = smallest; number <= largest; ++number) {
        depth += steps[number];
        numbers[number] = depth > 0;
    }
    return numbers;
}

std::string format_number_list(const NumberSet& numbers) {
    std::string text;
    for (std::size_t first = smallest; first <= largest; ++first) {
        if (!numbers[first]) {
            continue;
        }
        auto last = first;
        while (last < largest && numbers[last + 1]) {
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

} // namespace xpon::serializer
