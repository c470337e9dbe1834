#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace xpon::api_service {

/// The pieces between the separators: always one more than there are separators.
std::vector<std::string> split_string(std::string_view text, char separator);

/// The reverse of split_string.
std::string join_strings(std::span<const std::string> pieces, std::string_view separator);

} // namespace xpon::api_service
