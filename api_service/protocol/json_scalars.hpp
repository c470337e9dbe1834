#pragma once

#include <cstddef>
#include <string_view>

#include <cjson/cJSON.h>

namespace xpon::api_service {

// Numbers and the insides of strings in the bytes that cJSON_Print() makes of them, written where the caller has made
// room for the longest. Each gives the end of what it wrote.

/// Bytes; a number may use what it does not need of them.
inline constexpr std::size_t longest_number = std::string_view("-1.2345678901234567e-308").size() + 8;
/// Bytes for each byte of a text.
inline constexpr std::size_t longest_escape = std::string_view("\\u001f").size();

/// "null" for what is no finite number.
char* write_number(char* begin, const cJSON& number);
char* write_escaped(char* begin, std::string_view text);

} // namespace xpon::api_service
