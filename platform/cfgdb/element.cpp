#include "cfgdb/element.hpp"

namespace xpon::cfgdb {

std::span<const Element> all_elements() {
    using serializer::record_table;
#define XPON_LIST_ELEMENT(suffix, record, depth, size1, size2, path)                                                   \
    Element{#suffix, path, record_table<record>(), depth, {size1, size2}},
    static const std::array elements{XPON_CFGDB_ELEMENTS(XPON_LIST_ELEMENT)};
#undef XPON_LIST_ELEMENT
    return elements;
}

} // namespace xpon::cfgdb
