#include "cfgdb/element.hpp"
#include "serializer/cjson_tree.hpp"
#include "serializer/record_json.hpp"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace xpon {
namespace {

/// A record and the fields that it is refused for, "" when it is accepted.
struct Case {
    cfgdb::ElementId element;
    std::string json;
    std::string fields;
};

std::string refused_fields(const Case& row) {
    const auto& table = cfgdb::element(row.element).table;
    const serializer::Tree data(cJSON_Parse(row.json.c_str()));
    EXPECT_TRUE(data) << row.json;
    std::vector<std::byte> record(table.size);
    cJSON* errors = nullptr;
    EXPECT_EQ(serializer::deserialize_record(table, data.get(), record.data(), &errors), 0);
    const serializer::Tree owner(errors);
    std::string fields;
    for (const auto* error = errors == nullptr ? nullptr : errors->child; error != nullptr; error = error->next) {
        fields += (fields.empty() ? "" : " ") + std::string(cJSON_GetObjectItem(error, "path")->valuestring);
    }
    return fields;
}

class RecordRules : public testing::TestWithParam<Case> {};

TEST_P(RecordRules, NameTheLaterField) {
    EXPECT_EQ(refused_fields(GetParam()), GetParam().fields) << GetParam().json;
}

constexpr auto management = cfgdb::element_of<cfgdb::GSystemManagement>;
constexpr auto oob = cfgdb::element_of<cfgdb::OobPort>;
constexpr auto snmp = cfgdb::element_of<cfgdb::GSysSnmpCfg>;
constexpr auto pon_port = cfgdb::element_of<cfgdb::PonPort>;
constexpr auto dba = cfgdb::element_of<cfgdb::ProfileOntDba>;
constexpr auto shaping = cfgdb::element_of<cfgdb::ProfileOntShaping>;
constexpr auto ports = cfgdb::element_of<cfgdb::ProfileOntPortsCfg>;
constexpr auto cross_connect = cfgdb::element_of<cfgdb::ProfileOntCrossConnect>;
constexpr auto acs = cfgdb::element_of<cfgdb::ProfileOntManagementCfg>;
constexpr auto ont = cfgdb::element_of<cfgdb::PonOnt>;

INSTANTIATE_TEST_SUITE_P(
    System, RecordRules,
    testing::Values(Case{management, R"({"enabled":true})", "ip_address"},
                    Case{management, R"({"enabled":true,"address_mode":"dhcp"})", ""},
                    Case{management, R"({"enabled":true,"ip_address":"10.0.0.255"})", "ip_address"},
                    Case{management, R"({"enabled":true,"ip_address":"10.0.0.255","prefix_length":23})", ""},
                    Case{management, R"({"enabled":true,"ip_address":"127.0.0.1"})", "ip_address"},
                    Case{management, R"({"enabled":true,"ip_address":"224.0.0.1"})", "ip_address"},
                    Case{oob, R"({"gateway":"192.168.77.1"})", ""},
                    Case{oob, R"({"gateway":"192.168.78.1"})", "gateway"},
                    Case{oob, R"({"gateway":"192.168.77.10"})", "gateway"},
                    Case{snmp, R"({"engine_id":"FFffFFffFF"})", "engine_id"},
                    Case{snmp, R"({"engine_id":"80007ed903"})", ""},
                    Case{snmp, R"({"communities":[{"name":"a"},{"name":"b"},{"name":"a"}]})", "communities.2.name"},
                    Case{snmp, R"({"users":[{"name":"a"},{"name":"b","security_level":"no_auth_no_priv"}]})",
                         "users.0.auth_secret users.0.priv_secret"},
                    Case{snmp,
                         R"({"trap_targets":[{"name":"x"},{"name":"u","address":"10.0.0.1","version":"v3"},)"
                         R"({"name":"c","address":"10.0.0.1","version":"v1","inform":true}]})",
                         "trap_targets.0.address trap_targets.1.name trap_targets.2.inform"},
                    Case{pon_port, R"({"reach_min_km":20})", "reach_max_km"},
                    Case{pon_port, R"({"reach_min_km":20,"reach_max_km":60})", ""},
                    Case{pon_port, R"({"reach_min_km":19,"reach_max_km":60})", "reach_max_km"}));

INSTANTIATE_TEST_SUITE_P(
    Profiles, RecordRules,
    testing::Values(
        Case{dba, R"({"tcont_type":"type1"})", "fixed_kbps maximum_kbps additional"},
        Case{dba, R"({"tcont_type":"type1","fixed_kbps":64,"maximum_kbps":64,"additional":"none"})", ""},
        Case{dba,
             R"({"tcont_type":"type2","fixed_kbps":64,"assured_kbps":64,"maximum_kbps":128,)"
             R"("additional":"none"})",
             "fixed_kbps"},
        Case{dba, R"({"tcont_type":"type3","assured_kbps":64,"maximum_kbps":64,"additional":"non_assured"})",
             "maximum_kbps"},
        Case{dba, R"({"assured_kbps":64})", "assured_kbps"}, Case{dba, R"({"additional":"none"})", "additional"},
        Case{dba, R"({"tcont_type":"type5","fixed_kbps":64,"assured_kbps":64,"maximum_kbps":64})", "maximum_kbps"},
        Case{dba, R"({"tcont_type":"type5","fixed_kbps":64,"maximum_kbps":128,"additional":"none"})", "additional"},
        Case{dba, R"({"tcont_type":"type5","fixed_kbps":64,"maximum_kbps":64,"additional":"none"})", ""},
        Case{shaping, R"({"queues":[{"min_kbps":9,"max_kbps":8},{"min_kbps":9}]})", "queues.0.max_kbps"},
        Case{shaping, R"({"downstream_kbps":17,"queues":[{"min_kbps":9},{"min_kbps":9}]})", "queues"},
        Case{ports, R"({"pots":[false,true]})", "sip_proxy"},
        Case{ports, R"({"multicast_ranges":[{},{"first":"239.0.0.2","last":"239.0.0.1"}]})", "multicast_ranges.1.last"},
        Case{cross_connect, R"({"service_type":"iptv"})", ""}, // undefined without a name
        Case{cross_connect, R"({"name":"x"})", "s_vid"},
        Case{cross_connect, R"({"name":"x","s_vid":1,"service_type":"iptv"})", "multicast_vid igmp_snooping"},
        Case{cross_connect, R"({"name":"x","s_vid":1,"multicast_vid":2})", "multicast_vid"},
        Case{cross_connect, R"({"name":"x","s_vid":1,"service_type":"voip"})", "termination"},
        Case{cross_connect, R"({"name":"x","s_vid":1,"termination":"ip_host"})", "termination"},
        Case{cross_connect, R"({"name":"x","s_vid":1,"uni_ports":[]})", "uni_ports"},
        Case{cross_connect, R"({"name":"x","s_vid":1,"uni_match":"tagged"})", "uni_vid"},
        Case{cross_connect, R"({"name":"x","s_vid":1,"uni_vid":5})", "uni_vid"},
        Case{cross_connect, R"({"name":"x","s_vid":1,"vlan_model":"tls","c_vid":5})", "vlan_model c_vid"},
        Case{cross_connect, R"({"name":"x","s_vid":1,"source_guard":true})", "source_guard"},
        Case{acs, R"({"mode":"tr069"})", "acs_url"}, Case{acs, R"({"acs_url":"ftp://a"})", "acs_url"},
        Case{acs, R"({"mode":"tr069","acs_url":"https://acs.example.net/"})", ""},
        Case{ont, R"({"lines":[{},{"enabled":true}]})", "lines.1.number"}));

} // namespace
} // namespace xpon
