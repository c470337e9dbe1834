#pragma once

#include <cstdint>
#include <string>

namespace xpon::api_service {

/// What a caller may do. A higher level includes every right of a lower one; levels compare as integers.
enum class PrivilegeLevel : std::int32_t {
    Nothing = 0, ///< also the level of a request without a session
    Viewer = 1,
    Operator = 2,
    Administrator = 3,
};

/// "nothing", "viewer", "operator", "administrator"; "unknown" for any other value.
std::string to_string(PrivilegeLevel level);

} // namespace xpon::api_service
