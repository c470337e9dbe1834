#include "serializer/field_builders.hpp"

namespace xpon::serializer {
namespace {

using cfgdb::PonPort;

constexpr const char* odn_class_names[] = {"a", "b", "b_plus", "c", "c_plus"};
constexpr const char* onu_auth_names[] = {"serial", "serial_password"};
constexpr const char* dba_reporting_names[] = {"status", "traffic_monitoring"};

constexpr Field fields[] = {
    boolean(XPON_MEMBER(PonPort, enabled), true),
    label(text(XPON_MEMBER(PonPort, description), Characters::text)),
    enumeration(XPON_MEMBER(PonPort, odn_class), odn_class_names, PonPort::OdnClass::b_plus),
    number(XPON_MEMBER(PonPort, reach_min_km), 0, 59, 0),
    number(XPON_MEMBER(PonPort, reach_max_km), 1, 60, 20),
    number(XPON_MEMBER(PonPort, discovery_interval_s), 1, 60, 10),
    number(XPON_MEMBER(PonPort, key_interval_s), 10, 65535, 3600),
    number(XPON_MEMBER(PonPort, ont_limit), 1, 256, 256),
    enumeration(XPON_MEMBER(PonPort, onu_auth), onu_auth_names, PonPort::OnuAuth::serial),
    boolean(XPON_MEMBER(PonPort, downstream_fec), true),
    boolean(XPON_MEMBER(PonPort, rogue_detection), true),
    enumeration(XPON_MEMBER(PonPort, dba_reporting), dba_reporting_names, PonPort::DbaReporting::status),
};

void rules(const PonPort& port, Contradictions& contradictions) {
    constexpr int widest_window_km = 40;
    const int window = port.reach_max_km - port.reach_min_km;
    if (window < 1 || window > widest_window_km) {
        contradictions.add("reach_max_km", "the ranging window must be 1 to 40 km wide");
    }
}

constexpr Table table = make_table<PonPort>("PonPort", fields, record_rules<PonPort, rules>);

} // namespace

template <>
const Table& record_table<PonPort>() {
    return table;
}

} // namespace xpon::serializer
