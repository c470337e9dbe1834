#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace xpon::cfgdb {

/// A service that an ONT gets: that of its template or its own, with the overrides of its own record applied.
struct RunningService {
    std::uint8_t number; ///< 1 to 8
    std::uint8_t tcont;  ///< which of the ONT's T-CONTs carries it, from 0 by first use
    std::uint16_t s_vid;
    std::uint16_t c_vid; ///< 0 = one tag
};

/// A configured ONT as it is to run.
struct RunningOnt {
    std::uint16_t index; ///< flat, from 0
    std::uint64_t serial;
    bool enabled;
    bool upstream_fec;
    std::string password;
    std::vector<RunningService> services; ///< ascending by number
    /// Changes when, and nearly only when, the data that the ONT is provided with does; names and descriptions are
    /// not such data. The same in every process of one release.
    std::uint64_t provision;
};

/// The configured ones of the ONTs with these flat indices, in their order, all of one moment. `db` comes from a
/// CfgDbWrapper. Throws std::system_error for a fault of the database.
std::vector<RunningOnt> read_running_onts(const void* db, std::span<const std::uint16_t> indices);

} // namespace xpon::cfgdb
