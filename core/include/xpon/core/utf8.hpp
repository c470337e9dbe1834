#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace xpon::core {

/// The position of the first byte that is no valid UTF-8 or belongs to a control character.
std::optional<std::size_t> find_invalid_utf8(std::string_view text);

/// Whether the text is valid UTF-8, control characters included.
bool is_valid_utf8(std::string_view text);

/// `text` with U+FFFD for what is no valid UTF-8.
std::string replace_invalid_utf8(std::string_view text);

} // namespace xpon::core
