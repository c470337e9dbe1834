#pragma once

#include "xpon/cfgdb/elements.hpp"

// For every element E with record type T:
//
//   int getDb_E(const void* db, int context, T* out, const unsigned short* indices)         reads the candidate
//   int getRunDb_E(const void* db, T* out, const unsigned short* indices)                   reads running
//   int setDb_E(const void* db, int context, const T* record, const unsigned short* indices) writes the candidate
//   int setDb_init_E(const void* db, int context, unsigned short* indices)  back to factory state in the candidate
//
// `db` and `context` come from a CfgDbWrapper. `indices` holds one 0-based index per level and may be null at depth 0.
// A record that was never set reads as its factory default. 0 is success; otherwise the call returns -1, writes
// nothing, leaves `out` zero and sets errno: ERANGE for an index beyond the table, EINVAL for a null argument, ENOSPC
// for a full database, ENOMEM or EIO.
//
// setDb_init_ZebGCfg_pon_ont resets the ONT's services as well, so that a later ONT of the same number inherits
// nothing.
#define XPON_DECLARE_CFGDB_FUNCTIONS(suffix, record, depth, size1, size2, path)                                        \
    int getDb_##suffix(const void* db, int context, xpon::cfgdb::record* out, const unsigned short* indices);          \
    int getRunDb_##suffix(const void* db, xpon::cfgdb::record* out, const unsigned short* indices);                    \
    int setDb_##suffix(const void* db, int context, const xpon::cfgdb::record* record_in,                              \
                       const unsigned short* indices);                                                                 \
    int setDb_init_##suffix(const void* db, int context, unsigned short* indices);

extern "C" {
XPON_CFGDB_ELEMENTS(XPON_DECLARE_CFGDB_FUNCTIONS)

// Reads the running front ports into `out`, an array of 17 that is indexed by port number; element 0 is zero.
int getRunDbArray_ZebGCfg_switch_config_front_port(const void* db, xpon::cfgdb::FrontPort* out);
}

#undef XPON_DECLARE_CFGDB_FUNCTIONS
