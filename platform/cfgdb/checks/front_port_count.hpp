#pragma once

namespace xpon::cfgdb {

/// How many front ports the board has; as many as the configuration has records for when no board tells.
unsigned front_port_count();

} // namespace xpon::cfgdb
