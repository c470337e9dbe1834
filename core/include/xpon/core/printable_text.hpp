#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace xpon::core {

// Texts from ONTs, peers and clients are bytes that anybody may have chosen. They go to clients as JSON and to the log
// as lines, so both take them through these functions, which never fail.

/// `text` with each byte that is no part of a printable character in UTF-8 [RFC 3629] as "\xNN", two hexadecimal digits
/// in upper case. Not printable are malformed bytes, control characters [ISO 6429: C0, DEL, C1], separators of lines
/// and paragraphs, what turns the direction of writing [UAX #9], and noncharacters.
std::string printable_text(std::string_view text);

/// The same of the first characters that fit into `limit` bytes of `text`. What is cut off is told by its size:
/// "aaa..(3000000 bytes)" counts the whole text.
std::string printable_text(std::string_view text, std::size_t limit);

/// The same between double quotes, with '"' and '\' as "\x22" and "\x5C" too: where the text ends is beyond doubt.
/// A text that is cut has its size behind the quotes.
std::string quoted_text(std::string_view text, std::size_t limit = 128);

} // namespace xpon::core
