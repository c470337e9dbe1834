#pragma once

#include <string>

namespace xpon::gateway {

/// 256 bits of the kernel's random numbers in base64url (RFC 4648, 5): 43 characters. Throws std::system_error when the
/// kernel has none to give.
std::string make_session_id();

} // namespace xpon::gateway
