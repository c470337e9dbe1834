#include "serializer/field_builders.hpp"

namespace xpon::serializer {
namespace {

using cfgdb::OntTemplate;
using cfgdb::TemplateService;

constexpr Field service_fields[] = {
    number(XPON_MEMBER(TemplateService, cross_connect), 0, 255, 0),
    number(XPON_MEMBER(TemplateService, dba), 0, 255, 0),
};
constexpr Table service = make_table<TemplateService>("TemplateService", service_fields);

constexpr Field fields[] = {
    text(XPON_MEMBER(OntTemplate, name), Characters::name),
    text(XPON_MEMBER(OntTemplate, description), Characters::text),
    number(XPON_MEMBER(OntTemplate, ports_profile), 0, 64, 0),
    number(XPON_MEMBER(OntTemplate, management_profile), 0, 32, 0),
    number(XPON_MEMBER(OntTemplate, shaping_profile), 0, 32, 0),
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
