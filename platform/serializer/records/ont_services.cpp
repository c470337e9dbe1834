#include "serializer/field_builders.hpp"
#include "xpon/peer_side/gpon_rates.hpp"

namespace xpon::serializer {
namespace {

using cfgdb::OntServices;

constexpr const char* mode_names[] = {"template", "custom", "off"};

constexpr Field fields[] = {
    enumeration(XPON_MEMBER(OntServices, mode), mode_names, OntServices::from_template),
    reference<cfgdb::ProfileOntCrossConnect>(XPON_MEMBER(OntServices, cross_connect)),
    reference<cfgdb::ProfileOntDba>(XPON_MEMBER(OntServices, dba)),
    number(XPON_MEMBER(OntServices, s_vid), 0, 4094, 0),
    number(XPON_MEMBER(OntServices, c_vid), 0, 4094, 0),
    number(XPON_MEMBER(OntServices, mac_limit), 0, 255, 0),
    number(XPON_MEMBER(OntServices, downstream_kbps), 0, gpon_downstream_kbps, 0),
    number(XPON_MEMBER(OntServices, upstream_kbps), 0, gpon_upstream_kbps, 0),
    ipv4(XPON_MEMBER(OntServices, static_ip)),
    text(XPON_MEMBER(OntServices, subscriber_id), Characters::text),
};

constexpr Table table = make_table<OntServices>("OntServices", fields);

} // namespace

template <>
const Table& record_table<OntServices>() {
    return table;
}

} // namespace xpon::serializer
