#pragma once

#include "serializer/field.hpp"
#include "xpon/cfgdb/elements.hpp"

namespace xpon::serializer {

/// The description of a record type of the configuration; defined beside its field table in records/.
template <class Record>
const Table& record_table();

#define XPON_DECLARE_TABLE(suffix, record, depth, size1, size2, path)                                                  \
    template <>                                                                                                        \
    const Table& record_table<cfgdb::record>();
XPON_CFGDB_ELEMENTS(XPON_DECLARE_TABLE)
#undef XPON_DECLARE_TABLE

} // namespace xpon::serializer
