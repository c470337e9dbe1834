#pragma once

#include "xpon/cfgdb/elements.hpp"

#include <cjson/cJSON.h>

// For every record type T of the configuration:
//
//   int serialize_T_to_json(const T* record, cJSON* target, cJSON** errors)
//     adds the record's keys to the object `target`, all of them, in the order of the record's field table.
//   int deserialize_T_from_json(const cJSON* data, T* out, cJSON** errors)
//     fills `out` from the object `data`; a missing key gets its default.
//
// Both return 0 when they ran. Field errors do not make them fail: they come back as an array of error objects in
// `*errors`, owned by the caller, in table order, 32 at most; `*errors` is left alone when there are none. After field
// errors `out` must not be used. Non-zero: EINVAL for a null argument, ENOMEM.
#define XPON_DECLARE_SERIALIZER(suffix, record, depth, size1, size2, path)                                             \
    int serialize_##record##_to_json(const xpon::cfgdb::record* record_in, cJSON* target, cJSON** errors);             \
    int deserialize_##record##_from_json(const cJSON* data, xpon::cfgdb::record* out, cJSON** errors);

extern "C" {
XPON_CFGDB_ELEMENTS(XPON_DECLARE_SERIALIZER)
}

#undef XPON_DECLARE_SERIALIZER
