#pragma once

namespace xpon::cfgdb {

struct GSystemHostname {
    char hostname[64]; ///< one label [RFC 1123]
};

} // namespace xpon::cfgdb
