#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace xpon::oltctl {

/// The indices of one record, level by level; 0 behind the last level.
using Index = std::array<unsigned, 3>;

/// The numbers of a list such as "1-4,7", ascending. Failure (usage) with the list for anything else.
std::vector<unsigned> numbers_of(std::string_view list);
/// The list of ascending numbers.
std::string list_of(std::span<const unsigned> numbers);

/// Every index that the lists, one per level, stand for, in the order in which the service answers: by the first level,
/// then the second.
std::vector<Index> indices_of(std::span<const std::string> lists);
/// Groups of lists that together stand for exactly these indices. The indices ascend.
std::vector<std::vector<std::string>> lists_of(std::span<const Index> indices, unsigned depth);

/// "3/17/2"; "" without levels.
std::string text_of(const Index& index);

} // namespace xpon::oltctl
