#pragma once

#include <string>
#include <string_view>

namespace xpon::logger {

/// `text` with every control character [ISO 6429, C0, DEL and the UTF-8 form of C1] as "\xNN" for each of its bytes,
/// so that what a client sent can neither begin a log line of its own nor steer the terminal of whoever reads it.
std::string printable(std::string_view text);

} // namespace xpon::logger
