#include "xpon/serializer/serializer.hpp"

#include "serializer/contradictions.hpp"
#include "serializer/object_json.hpp"
#include "serializer/record_json.hpp"
#include "xpon/core/c_function.hpp"

#include <cstring>

namespace xpon::serializer {
namespace {

void hand_over(FieldErrors& found, cJSON** errors) {
    if (!found.empty()) {
        *errors = found.release();
    }
}

} // namespace

int serialize_record(const Table& table, const void* record, cJSON* target, cJSON** errors) noexcept {
    return core::c_function([&] {
        if (record == nullptr || target == nullptr || errors == nullptr) {
            core::fail_with(EINVAL);
        }
        FieldErrors found;
        write_object(table, static_cast<const std::byte*>(record), *target, found, nullptr);
        hand_over(found, errors);
    });
}

int deserialize_record(const Table& table, const cJSON* data, void* record, cJSON** errors) noexcept {
    return core::c_function([&] {
        if (record == nullptr || errors == nullptr) {
            core::fail_with(EINVAL);
        }
        auto* const bytes = static_cast<std::byte*>(record);
        std::memset(bytes, 0, table.size);
        FieldErrors found;
        if (data == nullptr) {
            found.add(Json_errors::wrong_type, "data", {"object"});
            return hand_over(found, errors);
        }
        set_defaults(table, bytes);
        read_object(table, *data, bytes, found, nullptr);
        if (found.empty() && table.rules != nullptr) {
            Contradictions contradictions(found);
            table.rules(bytes, contradictions);
        }
        hand_over(found, errors);
    });
}

} // namespace xpon::serializer

namespace serializer = xpon::serializer;
namespace cfgdb = xpon::cfgdb;

#define XPON_DEFINE_WRITER(suffix, record, depth, size1, size2, path)                                                  \
    int serialize_##record##_to_json(const cfgdb::record* record_in, cJSON* target, cJSON** errors) {                  \
        return serializer::serialize_record(serializer::record_table<cfgdb::record>(), record_in, target, errors);     \
    }
#define XPON_DEFINE_BOTH(suffix, record, depth, size1, size2, path)                                                    \
    XPON_DEFINE_WRITER(suffix, record, depth, size1, size2, path)                                                      \
    int deserialize_##record##_from_json(const cJSON* data, cfgdb::record* out, cJSON** errors) {                      \
        return serializer::deserialize_record(serializer::record_table<cfgdb::record>(), data, out, errors);           \
    }

XPON_CFGDB_ELEMENTS_BY_ACCESS(XPON_DEFINE_BOTH, XPON_DEFINE_WRITER)
