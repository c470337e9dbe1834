#pragma once

namespace xpon::cfgdb {

/// The host name of the OLT.
struct GSystemHostname {
    char hostname[64]; ///< [RFC 1123]
};

} // namespace xpon::cfgdb
