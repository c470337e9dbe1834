#pragma once

#include <cstdint>

namespace xpon::cfgdb {

/// How the client shows serials: "SIMUA0030011" or "53494D55A0030011".
struct OntSNFormat {
    enum class Format : std::uint8_t { vendor_hex, hex };

    Format format;
};

} // namespace xpon::cfgdb
