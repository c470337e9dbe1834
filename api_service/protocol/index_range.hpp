#pragma once

#include "api_service/core_names.hpp"

#include <array>
#include <bitset>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace xpon::api_service {

/// The greatest index on the wire, and so the number of positions of one level.
inline constexpr std::size_t max_index = 4096;

/// No list of that many numbers of four digits is longer, in bytes.
inline constexpr std::size_t longest_index_text = max_index * std::string_view("4096,").size() - 1;

/// One level of an index range: position i stands for index i + 1 on the wire.
using IndexSet = std::bitset<max_index>;

/// One decimal number; the whole text must be used.
Result<unsigned long> get_index_from_string(std::string_view text);

/// One level, such as "1-4,7": numbers and ranges from 1 to 4096 joined by ",", `longest_index_text` at most.
Result<IndexSet> get_bitset_from_string_range(std::string_view text);

/// The reverse: ascending, a run of two or more as "first-last".
std::string get_string_range_from_bitset(const IndexSet& set);

/// N levels of indices; the members are all tuples of one position (from 0) of each level.
template <std::size_t N>
class IndexRange {
public:
    using Element = std::array<unsigned long, N>;

    static Result<unsigned long> get_index_from_string(std::string_view text) {
        return api_service::get_index_from_string(text);
    }
    static Result<IndexSet> get_bitset_from_string_range(std::string_view text) {
        return api_service::get_bitset_from_string_range(text);
    }
    static std::string get_string_range_from_bitset(const IndexSet& set) {
        return api_service::get_string_range_from_bitset(set);
    }

    /// Exactly N strings, level by level.
    static Result<IndexRange> from_strings(std::span<const std::string> strings) {
        if (strings.size() != N) {
            return ErrorPayload(Error::InvalidInputArg);
        }
        IndexRange range;
        for (std::size_t level = 0; level < N; ++level) {
            BOOST_OUTCOME_TRY(range.sets_[level], api_service::get_bitset_from_string_range(strings[level]));
        }
        return range;
    }

    /// Where a walk with get_next begins.
    static constexpr Element before_first() {
        Element position{};
        position.fill(max_index);
        return position;
    }

    /// Steps `position` to the next member, the last level running fastest. False when none is left. A range
    /// without levels has one member, the empty tuple, which needs no step.
    bool get_next(Element& position) const {
        if (N > 0 && position == before_first()) {
            for (std::size_t level = 0; level < N; ++level) {
                position[level] = sets_[level]._Find_first();
                if (position[level] == max_index) {
                    return false; // from_strings makes no empty level
                }
            }
            return true;
        }
        for (std::size_t level = N; level-- > 0;) {
            position[level] = sets_[level]._Find_next(position[level]);
            if (position[level] != max_index) {
                return true;
            }
            position[level] = sets_[level]._Find_first();
        }
        return false;
    }

    /// Calls `visit`, which returns a Result<void>, with each member in the order of get_next. The first error ends
    /// the walk and is returned.
    template <class Visit>
    Result<void> for_each(Visit&& visit) const {
        auto position = before_first();
        for (bool more = N == 0 || get_next(position); more; more = get_next(position)) {
            BOOST_OUTCOME_TRY(visit(position));
        }
        return core::success();
    }

    [[nodiscard]] std::vector<std::string> get_string_ranges() const {
        std::vector<std::string> strings;
        for (const auto& set : sets_) {
            strings.push_back(api_service::get_string_range_from_bitset(set));
        }
        return strings;
    }

    /// The positions of one level, counted from 0.
    [[nodiscard]] const IndexSet& level(std::size_t number) const {
        return sets_.at(number);
    }

private:
    std::array<IndexSet, N> sets_;
};

} // namespace xpon::api_service
