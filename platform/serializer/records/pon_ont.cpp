#include "serializer/field_builders.hpp"

#include <span>

namespace xpon::serializer {
namespace {

using cfgdb::OntLine;
using cfgdb::PonOnt;

constexpr Field line_fields[] = {
    boolean(XPON_MEMBER(OntLine, enabled), false),
    text(XPON_MEMBER(OntLine, number), Characters::name),
    text(XPON_MEMBER(OntLine, user), Characters::name),
    secret(XPON_MEMBER(OntLine, secret)),
};
constexpr Table line = make_table<OntLine>("OntLine", line_fields);

constexpr const char* upstream_fec_names[] = {"template", "on", "off"};

constexpr Field fields[] = {
    serial(XPON_MEMBER(PonOnt, serial)),
    boolean(XPON_MEMBER(PonOnt, enabled), true),
    text(XPON_MEMBER(PonOnt, password), Characters::ascii),
    label(text(XPON_MEMBER(PonOnt, description), Characters::text)),
    reference<cfgdb::OntTemplate>(XPON_MEMBER(PonOnt, ont_template)),
    reference<cfgdb::ProfileOntPortsCfg>(XPON_MEMBER(PonOnt, ports_profile)),
    reference<cfgdb::ProfileOntManagementCfg>(XPON_MEMBER(PonOnt, management_profile)),
    reference<cfgdb::ProfileOntShaping>(XPON_MEMBER(PonOnt, shaping_profile)),
    enumeration(XPON_MEMBER(PonOnt, upstream_fec), upstream_fec_names, PonOnt::from_template),
    text(XPON_MEMBER(PonOnt, expected_equipment_id), Characters::text),
    array(XPON_MEMBER(PonOnt, lines), line),
};

void rules(const PonOnt& ont, Contradictions& contradictions) {
    for (std::size_t i = 0; i < std::size(ont.lines); ++i) {
        if (ont.lines[i].enabled != 0 && ont.lines[i].number[0] == '\0') {
            contradictions.add_in("lines", i, "number", "an enabled line needs a number");
        }
    }
}

constexpr Table table = make_table<PonOnt>("PonOnt", fields, record_rules<PonOnt, rules>);

} // namespace

template <>
const Table& record_table<PonOnt>() {
    return table;
}

} // namespace xpon::serializer
