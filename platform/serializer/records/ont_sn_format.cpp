#include "serializer/field_builders.hpp"

namespace xpon::serializer {
namespace {

using cfgdb::OntSNFormat;

constexpr const char* format_names[] = {"vendor_hex", "hex"};

constexpr Field fields[] = {
    enumeration(XPON_MEMBER(OntSNFormat, format), format_names, OntSNFormat::Format::vendor_hex),
};

constexpr Table table = make_table<OntSNFormat>("OntSNFormat", fields);

} // namespace

template <>
const Table& record_table<OntSNFormat>() {
    return table;
}

} // namespace xpon::serializer
