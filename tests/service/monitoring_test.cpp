// What clients read of the device: whole answers.

#include "tests/service/monitoring_fixture.hpp"

#include <tuple>

#include <sys/utsname.h>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using testing::HasSubstr;
using namespace std::string_literals;

using Monitoring = MonitoringTest;

TEST_F(Monitoring, System) {
    utsname names{};
    ASSERT_EQ(::uname(&names), 0);
    EXPECT_EQ(
        get("monitoring.system"),
        answer(R"({"ram":{"free":512.5,"total":2048},"disk":{"free":1024.25,"total":4096},)"
               R"("avg_load":{"1m":0.5,"5m":0.25,"15m":0.1},)"
               R"("fans":[{"is_fault":0,"is_present":1,"rate_rps":80},{"is_fault":1,"is_present":0,"rate_rps":0}],)"
               R"("temp_sensors":[{"id":"PON SFP 1","value":41},{"id":"PON chip  ","value":-5}],)"
               R"("power_sources":[{"is_220v_present":1,"is_present":1,"is_power_good":1,"is_read_info":1,)"
               R"("is_required_reset":0,"model":"PM-160","type":"AC","serial":"P1","version":"1v0","revision":"A",)"
               R"("date":"2024-05-17"},)"
               R"({"is_220v_present":0,"is_present":0,"is_power_good":0,"is_read_info":0}],)"
               R"("device_info":{"hostname":")"s +
               names.nodename +
               R"(","uptime":"3 days, 04:05:06","active_fw":"1.4.1.97","inactive_fw":"1.4.2.118",)"
               R"("next_boot_fw":"1.4.2.118","fpga_version":7,"pld_version":3},)"
               R"("factory_info":{"device_type":"GPON OLT","board_version":"2v1","serial_number":"OLT0001",)"
               R"("mac_address":"02:53:49:4D:00:01"}})"));
    device.environment.fan_count = 0;
    device.environment.temp_sensor_count = 0;
    device.environment.power_sources[0].is_present = 255;
    EXPECT_THAT(get("monitoring.system"),
                testing::AllOf(HasSubstr(R"("fans":[],"temp_sensors":[],)"), HasSubstr(R"("is_present":1,)")));
}

TEST_F(Monitoring, FrontPorts) {
    EXPECT_EQ(get("monitoring.interface.front_port.state", R"(["1-2,4,3"])"),
              answer(R"([{"port":1,"status":"UP","speed":"10G","sfp_condition":"Warning",)"
                     R"("sfp":{"vendor":"Acme","part_number":"A-1","revision":"B","media":"10GBASE-LR"},)"
                     R"("eddi":{"temperature_c":38.5,"voltage_v":3.29,"tx_bias_current_ma":31,"tx_power_mw":0.61}},)"
                     R"({"port":2,"status":"DOWN","speed":"none","sfp_condition":"Absent"},)"
                     R"({"port":3,"status":"DOWN","speed":"none","sfp_condition":"ExcludePolling"},)"
                     R"({"port":4,"status":"SHUTDOWN","speed":"1G","sfp_condition":"Warning",)"
                     R"("sfp":{"vendor":"Acme","part_number":"A-1","revision":"B","media":"1000BASE-T"}}])"));
}

TEST_F(Monitoring, PonPorts) {
    EXPECT_EQ(get("monitoring.interface.pon_port.state", R"(["1-3"])"),
              answer(R"([{"port":1,"state":"ACTIVE","pon_type":"GPON","ont_count":2,"sfp_condition":"Warning",)"
                     R"("sfp":{"vendor":"Acme","part_number":"A-1","revision":"B"},)"
                     R"("eddi":{"temperature_c":45,"voltage_v":3.3,"tx_bias_current_ma":12.5,"tx_power_dbm":3.7}},)"
                     R"({"port":2,"state":"NO_MODULE","pon_type":"GPON","ont_count":0,"sfp_condition":"Absent"},)"
                     R"({"port":3,"state":"FAULT","pon_type":"GPON","ont_count":0,"sfp_condition":"Warning",)"
                     R"("sfp":{"vendor":"Acme","part_number":"A-1","revision":"B"}}])"));
}

TEST_F(Monitoring, LogFilesAndEngineId) {
    EXPECT_EQ(request("configuration.CommonGCfg.system.snmp.engineID", "generate"),
              answer(R"("80007ed90302534a4d0001")"));
    EXPECT_EQ(get("monitoring.logs"), answer(R"({"log_files":["events.log","api-service.log"]})"));
    device.log_files.clear();
    EXPECT_EQ(get("monitoring.logs"), answer(R"({"log_files":[]})"));
}

TEST_F(Monitoring, Sessions) {
    const auto* const dhcp = "monitoring.ip.dhcp.sessions";
    const auto* const pppoe = "monitoring.ip.pppoe.sessions";
    EXPECT_EQ(get(dhcp), answer(R"({"sessions":[{"pon_port_id":3,"ont_id":17,"mac":"02:53:49:03:10:0A",)"
                                R"("service_id":2,"gem_port":640,"outer_vid":100,"ip":"10.0.0.1",)"
                                R"("life_time_msec":4294967295,"ont_serial":[83,73,77,85,0,0,0,9,0,0]}]})"));
    EXPECT_EQ(get(pppoe), answer(R"({"sessions":[{"pon_port_id":16,"ont_id":256,"gem_port":4093,)"
                                 R"("session_id":65535,"ont_serial":[83,73,77,85,0,0,0,8,0,0],"duration_sec":86400,)"
                                 R"("unblock_rest_sec":30,"client_mac":"FF:00:AB:01:0F:F0"}]})"));
    device.leases.clear();
    device.pppoe_sessions.clear();
    EXPECT_EQ(get(dhcp), answer(R"({"sessions":[]})"));
    EXPECT_EQ(get(pppoe), answer(R"({"sessions":[]})"));
}

TEST_F(Monitoring, IgmpGroups) {
    device.vlans[1] = {.is_snooping = 255, .groups = {}};
    auto odd = device.vlans[201].groups[0];
    odd.is_in_deletion_queue = 2;
    odd.filter_mode = Igmp_filter_mode{9};
    odd.vlan = 4094;
    odd.source_count = 0;
    odd.port_count = 0;
    device.vlans[4094] = {.is_snooping = 0, .groups = {odd}};
    EXPECT_EQ(get("monitoring.ip.igmp.snooping.groups"),
              answer(R"({"vlans":[1,201],"igmp_groups_count":2,"igmp_groups":[)"
                     R"({"group_address":"239.0.0.7","is_in_deletion_queue":0,"filter_mode":"EXCLUDE","vlan":201,)"
                     R"("ip_sources":[{"ip_address":"192.168.255.1","filter_mode":"INCLUDE"}],)"
                     R"("ports":[{"port":"pon-port 1/3","is_static":0,"expires_sec":214},)"
                     R"({"port":"CPU","is_static":1,"expires_sec":0}]},)"
                     R"({"group_address":"239.0.0.7","is_in_deletion_queue":1,"filter_mode":"EXCLUDE","vlan":4094,)"
                     R"("ip_sources":[],"ports":[]}]})"));
    EXPECT_EQ(device.calls, 4094) << "VLANs 1 to 4094";
}

TEST_F(Monitoring, MacTable) {
    device.mac_table.resize(5, device.mac_table[0]);
    device.mac_table[1].kind = switch_port_front;
    device.mac_table[2].kind = switch_port_channel;
    device.mac_table[3].kind = switch_port_cpu;
    device.mac_table[3].type = mac_entry_static;
    device.mac_table[4].ont_id = 0;
    std::string entries;
    for (const auto& [port, ont, type] : {std::tuple{"pon-port 1/3", "3/17", "dynamic"},
                                          {"front-port 1/3", "", "dynamic"},
                                          {"port-channel 1/3", "", "dynamic"},
                                          {"CPU", "", "static"},
                                          {"pon-port 1/3", "", "dynamic"}}) {
        entries += fmt::format(R"({}{{"mac":"02:53:49:03:10:10","port":"{}","svid":100,"cvid":7,"uvid":4094,)"
                               R"("ont":"{}","gem":640,"type":"{}"}})",
                               entries.empty() ? "" : ",", port, ont, type);
    }
    const auto whole = answer("[" + entries + "]");
    EXPECT_EQ(get("monitoring.mac"), whole);
    EXPECT_EQ(get("monitoring.mac", R"(["2,1/4-5"])"), whole);
    EXPECT_THAT(device.journal, testing::ElementsAre("mac_table 1/4 1/5 2/4 2/5"));
}

/// 40,000 addresses, 4096 ONTs with counters of 4 ports: a walk that is not linear does not end here in time.
TEST_F(Monitoring, LargeTables) {
    device.mac_table.resize(40'000, device.mac_table[0]);
    EXPECT_EQ(occurrences(get("monitoring.mac"), "\"mac\":"), 40'000U);
    Ont_eth_pm_history_data_3 record{};
    record.count = 4;
    set_counters(device, ont_information_eth_pm_history_data_3, record);
    const auto* const route =
        "monitoring.interface.ont.counters.ont_side.ethernet_performance_monitoring_history_data_3";
    EXPECT_EQ(occurrences(get(route, R"(["1-16"])"), "\"Jabbers\":"), 4U * 4096);
}

} // namespace
} // namespace xpon::test
