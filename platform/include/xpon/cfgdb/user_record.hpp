#pragma once

#include <cstdint>

namespace xpon::cfgdb {

/// A person who may use the web manager. Passwords belong to PAM alone.
struct User_record {
    char name[32];              ///< NUL-terminated
    std::uint8_t web_privilege; ///< 0 none, 1 viewer, 2 operator, 3 administrator
};

} // namespace xpon::cfgdb
