#include "serializer/field_builders.hpp"

namespace xpon::serializer {
namespace {

using cfgdb::GSystemHostname;

constexpr Field fields[] = {
    text(XPON_MEMBER(GSystemHostname, hostname), Characters::label, 1, "olt"),
};

constexpr Table table = make_table<GSystemHostname>("GSystemHostname", fields);

} // namespace

template <>
const Table& record_table<GSystemHostname>() {
    return table;
}

} // namespace xpon::serializer
