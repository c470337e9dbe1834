#pragma once

#include "xpon/cfgdb/element_functions.hpp"
#include "xpon/serializer/serializer.hpp"

#include <cstddef>

/// One type per configuration element: its record, its depth and the library functions that serve it.
namespace xpon::api_service::elements {

#define XPON_BIND_ELEMENT(suffix, record, element_depth, size1, size2, path)                                           \
    struct suffix {                                                                                                    \
        using Record = cfgdb::record;                                                                                  \
        static constexpr std::size_t depth = element_depth;                                                            \
        static constexpr auto* read_candidate = &getDb_##suffix;                                                       \
        static constexpr auto* read_running = &getRunDb_##suffix;                                                      \
        static constexpr auto* write = &setDb_##suffix;                                                                \
        static constexpr auto* initialise = &setDb_init_##suffix;                                                      \
        static constexpr auto* serialize = &serialize_##record##_to_json;                                              \
        static constexpr auto* deserialize = &deserialize_##record##_from_json;                                        \
    };
XPON_CFGDB_ELEMENTS(XPON_BIND_ELEMENT)
#undef XPON_BIND_ELEMENT

} // namespace xpon::api_service::elements
