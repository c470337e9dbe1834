#include "xpon/cfgdb/element_functions.hpp"

#include "cfgdb/database.hpp"
#include "xpon/core/c_function.hpp"

#include <cstring>

namespace {

using namespace xpon;
using namespace xpon::cfgdb;

RecordId make_id(ElementId id, const unsigned short* indices) {
    const auto& row = element(id);
    RecordId result{id, {}};
    for (unsigned level = 0; level < row.depth; ++level) {
        if (indices == nullptr) {
            core::fail_with(EINVAL);
        }
        if (indices[level] >= row.sizes[level]) {
            core::fail_with(ERANGE);
        }
        result.indices[level] = indices[level];
    }
    return result;
}

int read_record(const void* handle, Store store, ElementId id, void* out, const unsigned short* indices) {
    return core::c_function([&] {
        if (out == nullptr) {
            core::fail_with(EINVAL);
        }
        std::memset(out, 0, element(id).table.size);
        database_of(handle).read(store, make_id(id, indices), static_cast<std::byte*>(out));
    });
}

int write_record(const void* handle, ElementId id, const void* record, const unsigned short* indices) {
    return core::c_function([&] {
        if (record == nullptr) {
            core::fail_with(EINVAL);
        }
        database_of(handle).write(make_id(id, indices), static_cast<const std::byte*>(record));
    });
}

} // namespace

#define XPON_DEFINE_READERS(suffix, record, depth, size1, size2, path)                                                 \
    int getDb_##suffix(const void* db, int, record* out, const unsigned short* indices) {                              \
        return read_record(db, Store::candidate, ElementId::suffix, out, indices);                                     \
    }                                                                                                                  \
    int getRunDb_##suffix(const void* db, record* out, const unsigned short* indices) {                                \
        return read_record(db, Store::running, ElementId::suffix, out, indices);                                       \
    }
#define XPON_DEFINE_FUNCTIONS(suffix, record, depth, size1, size2, path)                                               \
    XPON_DEFINE_READERS(suffix, record, depth, size1, size2, path)                                                     \
    int setDb_##suffix(const void* db, int, const record* record_in, const unsigned short* indices) {                  \
        return write_record(db, ElementId::suffix, record_in, indices);                                                \
    }

XPON_CFGDB_ELEMENTS_BY_ACCESS(XPON_DEFINE_FUNCTIONS, XPON_DEFINE_READERS)

int setDb_init_ZebGCfg_pon_ont(const void* db, int, unsigned short* indices) {
    return core::c_function([&] { database_of(db).reset(make_id(element_of<PonOnt>, indices)); });
}

int getRunDbArray_ZebGCfg_switch_config_front_port(const void* db, FrontPort* out) {
    return core::c_function([&] {
        if (out == nullptr) {
            core::fail_with(EINVAL);
        }
        constexpr auto id = element_of<FrontPort>;
        std::memset(out, 0, (element(id).sizes[0] + 1U) * sizeof(FrontPort));
        database_of(db).read_all(Store::running, id, reinterpret_cast<std::byte*>(out + 1));
    });
}
