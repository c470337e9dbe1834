#pragma once

#include "xpon/cfgdb/records.hpp"

#include <cjson/cJSON.h>

// For every record type T of the configuration:
//
//   int serialize_T_to_json(const T* record, cJSON* target, cJSON** errors)
//     adds the record's keys to the object `target`, all of them, in the order of the record's field table.
//
// and, unless its element can only be read,
//
//   int deserialize_T_from_json(const cJSON* data, T* out, cJSON** errors)
//     fills `out` from the object `data`; a missing key gets its default.
//
// Both return 0 when they ran. Field errors do not make them fail: they come back as an array of error objects in
// `*errors`, owned by the caller, in table order, 32 at most; `*errors` is left alone when there are none. After field
// errors `out` must not be used. Non-zero: EINVAL for a null argument, ENOMEM.
#define XPON_READABLE(record)                                                                                          \
    int serialize_##record##_to_json(const xpon::cfgdb::record* record_in, cJSON* target, cJSON** errors);
#define XPON_WRITABLE(record)                                                                                          \
    XPON_READABLE(record)                                                                                              \
    int deserialize_##record##_from_json(const cJSON* data, xpon::cfgdb::record* out, cJSON** errors);

extern "C" {
// clang-format off
XPON_WRITABLE(GSystemManagement)
XPON_WRITABLE(OobPort)
XPON_READABLE(GSystemFanSpeed)
XPON_READABLE(GResetButtonMode)
XPON_WRITABLE(FrontPort)
XPON_WRITABLE(PortChannel)
XPON_WRITABLE(PonPort)
XPON_WRITABLE(NtpConfig)
XPON_WRITABLE(GSysSnmpCfg)
XPON_WRITABLE(OntTemplate)
XPON_WRITABLE(ProfileOntPortsCfg)
XPON_WRITABLE(ProfileOntCrossConnect)
XPON_WRITABLE(ProfileOntManagementCfg)
XPON_WRITABLE(ProfileOntDba)
XPON_WRITABLE(ProfileOntShaping)
XPON_WRITABLE(PonOnt)
XPON_WRITABLE(OntServices)
XPON_WRITABLE(OntSNFormat)
XPON_WRITABLE(GSystemHostname)
// clang-format on
} // extern "C"

#undef XPON_READABLE
#undef XPON_WRITABLE
