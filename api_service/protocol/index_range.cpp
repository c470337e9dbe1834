#include "api_service/protocol/index_range.hpp"

#include "api_service/protocol/strings.hpp"

#include <charconv>

#include <fmt/format.h>

namespace xpon::api_service {
namespace {

Result<unsigned long> get_index_in_range(std::string_view text) {
    BOOST_OUTCOME_TRY(const auto index, get_index_from_string(text));
    if (index < 1 || index > max_index) {
        return ErrorPayload(Error::OutOfRange, fmt::format("Index '{}' is out of range", index));
    }
    return index;
}

Result<void> add_item(IndexSet& set, std::string_view item) {
    const auto dash = item.find('-');
    BOOST_OUTCOME_TRY(const auto first, get_index_in_range(item.substr(0, dash)));
    auto last = first;
    if (dash != std::string_view::npos) {
        BOOST_OUTCOME_TRY(last, get_index_in_range(item.substr(dash + 1)));
    }
    if (first > last) {
        return ErrorPayload(Error::InvalidInputArg);
    }
    if (first == last) { // as most are; shifts go over the whole set
        set.set(first - 1);
        return core::success();
    }
    set |= ~IndexSet() >> (max_index - 1 - (last - first)) << (first - 1);
    return core::success();
}

} // namespace

Result<unsigned long> get_index_from_string(std::string_view text) {
    if (text.empty()) {
        return ErrorPayload(Error::InvalidInputArg, "One of the indexes is empty");
    }
    if (text.find_first_not_of("0123456789") != std::string_view::npos) {
        return ErrorPayload(Error::InvalidInputArg, fmt::format("Invalid symbol in index '{}'", text));
    }
    unsigned long index = 0;
    const auto* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, index);
    if (parsed.ec != std::errc() || parsed.ptr != end) {
        return ErrorPayload(Error::InvalidInputArg,
                            fmt::format("An error occurred while parsing the index '{}'", text));
    }
    return index;
}

Result<IndexSet> get_bitset_from_string_range(std::string_view text) {
    if (text.size() > longest_index_text) {
        return ErrorPayload(Error::InvalidInputArg, fmt::format("An index of {} bytes is too long", text.size()));
    }
    IndexSet set;
    for (const auto& item : split_string(text, ',')) {
        BOOST_OUTCOME_TRY(add_item(set, item));
    }
    return set;
}

std::string get_string_range_from_bitset(const IndexSet& set) {
    std::vector<std::string> items;
    for (auto first = set._Find_first(); first < set.size();) {
        auto end = first + 1;
        while (end < set.size() && set.test(end)) {
            ++end;
        }
        items.push_back(end - first > 1 ? fmt::format("{}-{}", first + 1, end) : fmt::format("{}", first + 1));
        first = set._Find_next(end - 1);
    }
    return join_strings(items, ",");
}

} // namespace xpon::api_service
