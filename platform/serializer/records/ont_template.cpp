#include "serializer/field_builders.hpp"

namespace xpon::serializer {
namespace {

using cfgdb::OntTemplate;
using cfgdb::TemplateService;

constexpr Field service_fields[] = {
    reference<cfgdb::ProfileOntCrossConnect>(XPON_MEMBER(TemplateService, cross_connect)),
    reference<cfgdb::ProfileOntDba>(XPON_MEMBER(TemplateService, dba)),
};
constexpr Table service = make_table<TemplateService>("TemplateService", service_fields);

constexpr Field fields[] = {
    name(XPON_MEMBER(OntTemplate, name)),
    label(text(XPON_MEMBER(OntTemplate, description), Characters::text)),
    reference<cfgdb::ProfileOntPortsCfg>(XPON_MEMBER(OntTemplate, ports_profile)),
    reference<cfgdb::ProfileOntManagementCfg>(XPON_MEMBER(OntTemplate, management_profile)),
    reference<cfgdb::ProfileOntShaping>(XPON_MEMBER(OntTemplate, shaping_profile)),
    boolean(XPON_MEMBER(OntTemplate, upstream_fec), true),
    array(XPON_MEMBER(OntTemplate, services), service),
};

constexpr Table table = make_table<OntTemplate>("OntTemplate", fields);

} // namespace

template <>
const Table& record_table<OntTemplate>() {
    return table;
}

} // namespace xpon::serializer
