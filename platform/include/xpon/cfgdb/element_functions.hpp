#pragma once

#include "xpon/cfgdb/records.hpp"

// For every element E with record type T:
//
//   int getDb_E(const void* db, int context, T* out, const unsigned short* indices)         reads the candidate
//   int getRunDb_E(const void* db, T* out, const unsigned short* indices)                   reads running
//
// and, unless the element can only be read,
//
//   int setDb_E(const void* db, int context, const T* record, const unsigned short* indices) writes the candidate
//
// `db` and `context` come from a CfgDbWrapper. `indices` holds one 0-based index per level and may be null at depth 0.
// A record that was never set reads as its factory default. 0 is success; otherwise the call returns -1, writes
// nothing, leaves `out` zero and sets errno: ERANGE for an index beyond the table, EINVAL for a null argument, ENOSPC
// for a full database, ENOMEM or EIO.
#define XPON_READABLE(suffix, record)                                                                                  \
    int getDb_##suffix(const void* db, int context, xpon::cfgdb::record* out, const unsigned short* indices);          \
    int getRunDb_##suffix(const void* db, xpon::cfgdb::record* out, const unsigned short* indices);
#define XPON_WRITABLE(suffix, record)                                                                                  \
    XPON_READABLE(suffix, record)                                                                                      \
    int setDb_##suffix(const void* db, int context, const xpon::cfgdb::record* record_in,                              \
                       const unsigned short* indices);

extern "C" {

// clang-format off
XPON_WRITABLE(CommonGCfg_management, GSystemManagement)
XPON_WRITABLE(CommonGCfg_system_oob, OobPort)
XPON_READABLE(CommonGCfg_fan_speed, GSystemFanSpeed)
XPON_READABLE(CommonGCfg_reset_button_mode, GResetButtonMode)
XPON_WRITABLE(ZebGCfg_switch_config_front_port, FrontPort)
XPON_WRITABLE(ZebGCfg_switch_config_lag_port_channel, PortChannel)
XPON_WRITABLE(ZebGCfg_pon_port_state, PonPort)
XPON_WRITABLE(CommonGCfg_system_ntp, NtpConfig)
XPON_WRITABLE(CommonGCfg_system_snmp, GSysSnmpCfg)
XPON_WRITABLE(CommonGCfg_profiles_profiles_ont_ont_template, OntTemplate)
XPON_WRITABLE(CommonGCfg_profiles_profiles_ont_ports, ProfileOntPortsCfg)
XPON_WRITABLE(CommonGCfg_profiles_profiles_ont_cross_connect, ProfileOntCrossConnect)
XPON_WRITABLE(CommonGCfg_profiles_profiles_ont_management, ProfileOntManagementCfg)
XPON_WRITABLE(CommonGCfg_profiles_profiles_ont_dba, ProfileOntDba)
XPON_WRITABLE(CommonGCfg_profiles_profiles_ont_shaping, ProfileOntShaping)
XPON_WRITABLE(ZebGCfg_pon_ont, PonOnt)
XPON_WRITABLE(ZebGCfg_pon_ont_ont_common_service, OntServices)
XPON_WRITABLE(CommonGCfg_ont_sn_format, OntSNFormat)
XPON_WRITABLE(CommonGCfg_hostname, GSystemHostname)
// clang-format on

/// Puts an ONT back to factory state in the candidate, its services as well, so that a later ONT of the same number
/// inherits nothing.
int setDb_init_ZebGCfg_pon_ont(const void* db, int context, unsigned short* indices);

/// Reads the running front ports into `out`, an array of 17 that is indexed by port number; element 0 is zero.
int getRunDbArray_ZebGCfg_switch_config_front_port(const void* db, xpon::cfgdb::FrontPort* out);

} // extern "C"

#undef XPON_READABLE
#undef XPON_WRITABLE
