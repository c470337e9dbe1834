#pragma once

#include "xpon/core/json_tree.hpp"

#include <string>
#include <string_view>

namespace xpon::client {

/// The array of 10 bytes that the service takes for a serial such as "SIMUA0030011" (vendor, then hexadecimal digits)
/// or "53494D55A0030011"; null for any other text.
core::JsonTree parse_serial(std::string_view text);
/// "SIMUA0030011"; "" when all bytes are 0. A vendor that is not printable is written in hexadecimal digits, too.
std::string serial_text(const cJSON* bytes);

} // namespace xpon::client
