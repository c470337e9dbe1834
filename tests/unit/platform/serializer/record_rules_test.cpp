#include "tests/unit/platform/serializer/json_records.hpp"

namespace xpon::cfgdb {
namespace {

const auto& management = test::table_of<GSystemManagement>();
const auto& oob = test::table_of<OobPort>();
const auto& ntp = test::table_of<NtpConfig>();
const auto& snmp = test::table_of<GSysSnmpCfg>();
const auto& pon_port = test::table_of<PonPort>();
const auto& dba = test::table_of<ProfileOntDba>();
const auto& shaping = test::table_of<ProfileOntShaping>();
const auto& ports = test::table_of<ProfileOntPortsCfg>();
const auto& cross_connect = test::table_of<ProfileOntCrossConnect>();
const auto& acs = test::table_of<ProfileOntManagementCfg>();
const auto& ont = test::table_of<PonOnt>();

struct Case {
    const serializer::Table& table;
    std::string json;
    std::string refused_fields; ///< "" when the record is accepted
};

const Case cases[] = {
    {management, R"({"enabled":true})", "ip_address"},
    {management, R"({"enabled":true,"address_mode":"dhcp"})", ""},
    {management, R"({"enabled":true,"ip_address":"10.0.0.255"})", "ip_address"},
    {management, R"({"enabled":true,"ip_address":"10.0.0.255","prefix_length":23})", ""},
    {management, R"({"enabled":true,"ip_address":"127.0.0.1"})", "ip_address"},
    {management, R"({"enabled":true,"ip_address":"224.0.0.1"})", "ip_address"},
    {oob, R"({"gateway":"192.168.77.1"})", ""},
    {oob, R"({"gateway":"192.168.78.1"})", "gateway"},
    {oob, R"({"gateway":"192.168.77.10"})", "gateway"},
    {ntp, R"({"enabled":true,"min_poll":11})", "servers max_poll"},
    {ntp, R"({"servers":[{"address":"a","prefer":true},{"address":"a","prefer":true}]})",
     "servers.1.address servers.1.prefer"},
    {ntp, R"({"enabled":true,"min_poll":3})", "min_poll"}, // contradictions of good fields only
    {snmp, R"({"engine_id":"FFffFFffFF"})", "engine_id"},
    {snmp, R"({"engine_id":"80007ed903"})", ""},
    {snmp, R"({"communities":[{"name":"a"},{"name":"b"},{"name":"a"}]})", "communities.2.name"},
    {snmp, R"({"users":[{"name":"a"},{"name":"b","security_level":"no_auth_no_priv"}]})",
     "users.0.auth_secret users.0.priv_secret"},
    {snmp,
     R"({"trap_targets":[{"name":"x"},{"name":"u","address":"10.0.0.1","version":"v3"},)"
     R"({"name":"c","address":"10.0.0.1","version":"v1","inform":true}]})",
     "trap_targets.0.address trap_targets.1.name trap_targets.2.inform"},
    {pon_port, R"({"reach_min_km":20,"reach_max_km":60})", ""},
    {pon_port, R"({"reach_min_km":19,"reach_max_km":60})", "reach_max_km"},
    {dba, R"({"tcont_type":"type1"})", "fixed_kbps maximum_kbps additional"},
    {dba, R"({"tcont_type":"type1","fixed_kbps":64,"maximum_kbps":64,"additional":"none"})", ""},
    {dba, R"({"tcont_type":"type2","fixed_kbps":64,"assured_kbps":64,"maximum_kbps":128,"additional":"none"})",
     "fixed_kbps"},
    {dba, R"({"tcont_type":"type3","assured_kbps":64,"maximum_kbps":64,"additional":"non_assured"})", "maximum_kbps"},
    {dba, R"({"assured_kbps":64,"additional":"none"})", "assured_kbps additional"},
    {dba, R"({"tcont_type":"type5","fixed_kbps":64,"assured_kbps":64,"maximum_kbps":64})", "maximum_kbps"},
    {dba, R"({"tcont_type":"type5","fixed_kbps":64,"maximum_kbps":128,"additional":"none"})", "additional"},
    {dba, R"({"tcont_type":"type5","fixed_kbps":64,"maximum_kbps":64,"additional":"none"})", ""},
    {shaping, R"({"queues":[{"min_kbps":9,"max_kbps":8},{"min_kbps":9}]})", "queues.0.max_kbps"},
    {shaping, R"({"downstream_kbps":17,"queues":[{"min_kbps":9},{"min_kbps":9}]})", "queues"},
    {ports, R"({"pots":[false,true],"multicast_ranges":[{},{"first":"239.0.0.2","last":"239.0.0.1"}]})",
     "multicast_ranges.1.last sip_proxy"},
    {cross_connect, R"({"service_type":"iptv"})", ""}, // undefined without a name
    {cross_connect, R"({"name":"x","uni_ports":[],"uni_vid":5,"source_guard":true})",
     "uni_ports uni_vid s_vid source_guard"},
    {cross_connect, R"({"name":"x","s_vid":1,"service_type":"iptv"})", "multicast_vid igmp_snooping"},
    {cross_connect, R"({"name":"x","s_vid":1,"multicast_vid":2})", "multicast_vid"},
    {cross_connect, R"({"name":"x","s_vid":1,"service_type":"voip"})", "termination"},
    {cross_connect, R"({"name":"x","s_vid":1,"termination":"ip_host"})", "termination"},
    {cross_connect, R"({"name":"x","s_vid":1,"uni_match":"tagged"})", "uni_vid"},
    {cross_connect, R"({"name":"x","s_vid":1,"vlan_model":"tls","c_vid":5})", "vlan_model c_vid"},
    {acs, R"({"mode":"tr069"})", "acs_url"},
    {acs, R"({"acs_url":"ftp://a"})", "acs_url"},
    {acs, R"({"mode":"tr069","acs_url":"https://acs.example.net/"})", ""},
    {ont, R"({"lines":[{},{"enabled":true}]})", "lines.1.number"},
};

TEST(RecordRules, NameTheLaterField) {
    for (const auto& [table, json, refused_fields] : cases) {
        test::Record record;
        const auto errors = test::read(table, json, record);
        std::string fields;
        for (const auto* error = errors ? errors->child : nullptr; error != nullptr; error = error->next) {
            fields += (fields.empty() ? "" : " ") + std::string(cJSON_GetObjectItem(error, "path")->valuestring);
        }
        EXPECT_EQ(fields, refused_fields) << json;
    }
}

} // namespace
} // namespace xpon::cfgdb
