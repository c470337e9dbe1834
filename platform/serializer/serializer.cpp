#include "xpon/serializer/serializer.hpp"

#include "serializer/record_json.hpp"
#include "serializer/record_tables.hpp"

namespace serializer = xpon::serializer;
namespace cfgdb = xpon::cfgdb;

#define XPON_DEFINE_SERIALIZER(suffix, record, depth, size1, size2, path)                                              \
    int serialize_##record##_to_json(const cfgdb::record* record_in, cJSON* target, cJSON** errors) {                  \
        return serializer::serialize_record(serializer::record_table<cfgdb::record>(), record_in, target, errors);     \
    }                                                                                                                  \
    int deserialize_##record##_from_json(const cJSON* data, cfgdb::record* out, cJSON** errors) {                      \
        return serializer::deserialize_record(serializer::record_table<cfgdb::record>(), data, out, errors);           \
    }

XPON_CFGDB_ELEMENTS(XPON_DEFINE_SERIALIZER)
