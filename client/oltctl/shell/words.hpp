#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace xpon::oltctl {

/// A line as a shell splits it: blanks between words, quotes of both kinds, and \ before a character. `open`: whether
/// a quote is not closed; `begin`: where the last word begins in the line, its end if the line ends with a blank.
struct Words {
    std::vector<std::string> words;
    bool open = false;
    std::size_t begin = 0;
};
Words split(std::string_view line);

} // namespace xpon::oltctl
