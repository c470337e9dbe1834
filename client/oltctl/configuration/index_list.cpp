#include "client/oltctl/configuration/index_list.hpp"

#include "client/oltctl/failure.hpp"

#include <charconv>
#include <map>
#include <set>
#include <utility>

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

constexpr unsigned highest_index = 4096;

[[noreturn]] void refuse(std::string_view list) {
    throw Failure(ExitStatus::usage,
                  fmt::format("'{}' is no list of indices. Write numbers from 1 and ranges, such as 1-4,7.", list));
}

unsigned number_of(std::string_view text, std::string_view list) {
    unsigned number = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size() || number < 1 || number > highest_index) {
        refuse(list);
    }
    return number;
}

using Numbers = std::vector<unsigned>;

/// Sorted by the numbers that several of them have in common: first numbers by the lists that stand behind each.
std::map<std::vector<std::string>, Numbers> by_what_follows(std::span<const Index> indices, unsigned level,
                                                            unsigned depth) {
    std::map<std::vector<std::string>, Numbers> groups;
    for (std::size_t begin = 0; begin < indices.size();) {
        auto end = begin + 1;
        while (end < indices.size() && indices[end][level] == indices[begin][level]) {
            ++end;
        }
        const auto number = indices[begin][level];
        if (level + 1 == depth) {
            groups[{}].push_back(number);
        } else {
            for (const auto& [rest, numbers] : by_what_follows(indices.subspan(begin, end - begin), level + 1, depth)) {
                std::vector<std::string> key{list_of(numbers)};
                key.insert(key.end(), rest.begin(), rest.end());
                groups[key].push_back(number);
            }
        }
        begin = end;
    }
    return groups;
}

} // namespace

Numbers numbers_of(std::string_view list) {
    std::set<unsigned> numbers;
    for (auto rest = list;;) {
        const auto comma = rest.find(',');
        const auto item = rest.substr(0, comma);
        const auto dash = item.find('-');
        const auto first = number_of(item.substr(0, dash), list);
        const auto last = dash == std::string_view::npos ? first : number_of(item.substr(dash + 1), list);
        if (first > last) {
            refuse(list);
        }
        for (auto number = first; number <= last; ++number) {
            numbers.insert(number);
        }
        if (comma == std::string_view::npos) {
            return {numbers.begin(), numbers.end()};
        }
        rest.remove_prefix(comma + 1);
    }
}

std::string list_of(std::span<const unsigned> numbers) {
    std::string text;
    for (std::size_t begin = 0; begin < numbers.size();) {
        auto end = begin + 1;
        while (end < numbers.size() && numbers[end] == numbers[end - 1] + 1) {
            ++end;
        }
        text += text.empty() ? "" : ",";
        text += end - begin == 1 ? fmt::format("{}", numbers[begin])
                                 : fmt::format("{}-{}", numbers[begin], numbers[end - 1]);
        begin = end;
    }
    return text;
}

std::vector<Index> indices_of(std::span<const std::string> lists) {
    std::vector<Index> indices{Index{}};
    for (std::size_t level = 0; level < lists.size(); ++level) {
        const auto numbers = numbers_of(lists[level]);
        std::vector<Index> longer;
        longer.reserve(indices.size() * numbers.size());
        for (auto index : indices) {
            for (const auto number : numbers) {
                index[level] = number;
                longer.push_back(index);
            }
        }
        indices = std::move(longer);
    }
    return indices;
}

std::vector<std::vector<std::string>> lists_of(std::span<const Index> indices, unsigned depth) {
    std::vector<std::vector<std::string>> all;
    if (depth == 0) {
        all.emplace_back();
        return all;
    }
    for (const auto& [rest, numbers] : by_what_follows(indices, 0, depth)) {
        auto& lists = all.emplace_back(std::vector<std::string>{list_of(numbers)});
        lists.insert(lists.end(), rest.begin(), rest.end());
    }
    return all;
}

std::string text_of(const Index& index) {
    std::string text;
    for (const auto number : index) {
        if (number != 0) {
            text += fmt::format("{}{}", text.empty() ? "" : "/", number);
        }
    }
    return text;
}

} // namespace xpon::oltctl
