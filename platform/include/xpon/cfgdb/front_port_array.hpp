#pragma once

namespace xpon::cfgdb {
struct FrontPort;
} // namespace xpon::cfgdb

extern "C" {

/// Reads all running front-port records into the 17 elements of `out`, so that the array is indexed by port number;
/// element 0 is all zero. `db` comes from a CfgDbWrapper. 0, or -1 with errno as for the functions of one element;
/// `out` is zero then.
int getRunDbArray_ZebGCfg_switch_config_front_port(const void* db, xpon::cfgdb::FrontPort* out);

} // extern "C"
