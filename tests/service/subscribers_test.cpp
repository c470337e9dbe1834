// What clients read of subscribers' traffic: whole answers, records that are not to be trusted, large tables.

#include "tests/service/monitoring_fixture.hpp"

#include <algorithm>
#include <array>
#include <functional>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

constexpr const char* dhcp = "monitoring.ip.dhcp.sessions";
constexpr const char* pppoe = "monitoring.ip.pppoe.sessions";
constexpr const char* igmp = "monitoring.ip.igmp.snooping.groups";
constexpr const char* mac = "monitoring.mac";

class Subscribers : public MonitoringTest {};

TEST_F(Subscribers, Sessions) {
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

TEST_F(Subscribers, IgmpGroups) {
    const std::string group_201 =
        R"({"group_address":"239.0.0.7","is_in_deletion_queue":0,"filter_mode":"EXCLUDE","vlan":201,)"
        R"("ip_sources":[{"ip_address":"192.168.255.1","filter_mode":"INCLUDE"}],)"
        R"("ports":[{"port":"pon-port 1/3","is_static":0,"expires_sec":214},)"
        R"({"port":"CPU","is_static":1,"expires_sec":0}]})";
    EXPECT_EQ(get(igmp), answer(R"({"vlans":[201],"igmp_groups_count":1,"igmp_groups":[)" + group_201 + "]}"));

    device.vlans[1] = {.is_snooping = 255, .groups = {}};
    auto odd = device.vlans[201].groups[0];
    std::ranges::copy(std::array{224, 0, 0, 251}, odd.address);
    odd.is_in_deletion_queue = 2;
    odd.filter_mode = Igmp_filter_mode{9};
    odd.vlan = 4094;
    odd.source_count = 0;
    odd.port_count = 0;
    device.vlans[4094] = {.is_snooping = 0, .groups = {odd}};
    EXPECT_EQ(get(igmp), answer(R"({"vlans":[1,201],"igmp_groups_count":2,"igmp_groups":[)" + group_201 +
                                R"(,{"group_address":"224.0.0.251","is_in_deletion_queue":1,)"
                                R"("filter_mode":"EXCLUDE","vlan":4094,"ip_sources":[],"ports":[]}]})"));
    device.vlans.clear();
    EXPECT_EQ(get(igmp), answer(R"({"vlans":[],"igmp_groups_count":0,"igmp_groups":[]})"));
}

TEST_F(Subscribers, MacTable) {
    auto front = device.mac_table[0];
    front.kind = switch_port_front;
    auto channel = device.mac_table[0];
    channel.kind = switch_port_channel;
    channel.ont_id = 0;
    auto cpu = device.mac_table[0];
    cpu.kind = switch_port_cpu;
    cpu.type = mac_entry_static;
    auto no_ont = device.mac_table[0];
    no_ont.ont_id = 0;
    device.mac_table.insert(device.mac_table.end(), {front, channel, cpu, no_ont});
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
    EXPECT_EQ(get(mac), whole);
    EXPECT_THAT(device.journal, testing::IsEmpty());
    EXPECT_EQ(get(mac, R"("indices":["2,1/4-5"])"), whole);
    EXPECT_THAT(device.journal, ElementsAre("mac_table 1/4 1/5 2/4 2/5"));
    device.mac_table.clear();
    EXPECT_EQ(get(mac), answer("[]"));

    for (const auto& [indices, cause] : {std::pair{R"(["1","1"])", "Indices cannot contain more than 1 element"},
                                         {R"(["17"])", "C API function returned -1, errno=34"},
                                         {R"(["1/"])", "C API function returned -1, errno=22"}}) {
        EXPECT_EQ(get(mac, fmt::format(R"("indices":{})", indices)), failure(mac));
        EXPECT_THAT(take_log(), Contains(EndsWith(fmt::format("Message: {}.", cause))));
    }
}

TEST_F(Subscribers, IgmpFailures) {
    for (const auto& [call, cause] : {std::pair{1, "IGMP is unavailable"},
                                      {2, "Error at receiving IGMP group info"},
                                      {4095, "Error at receiving IGMP group info"}}) {
        device.calls = 0;
        device.failing_call = call;
        EXPECT_EQ(get(igmp), failure(igmp)) << call;
        EXPECT_THAT(take_log(), testing::AllOf(Contains("C API function returned -1, errno=5"),
                                               Contains(EndsWith(fmt::format("Message: {}.", cause)))));
    }
    EXPECT_EQ(device.calls, 4095); // one refresh and VLANs 1 to 4094
}

TEST_F(Subscribers, RecordsThatContradictThemselvesAreRefused) {
    struct Hostile {
        const char* path;
        std::function<void(FakeDevice&)> spoil;
        const char* cause;
    };
    const auto group = [](FakeDevice& d) -> Igmp_group& { return d.vlans[201].groups[0]; };
    const Hostile cases[] = {
        {dhcp, [](auto& d) { d.has_entries = false; }, "Object cannot be null"},
        {pppoe, [](auto& d) { d.has_entries = false; }, "Object cannot be null"},
        {igmp, [](auto& d) { d.has_entries = false; }, "VLAN 201: Error: InvalidInputArg. Message: Object cannot be"},
        {mac, [](auto& d) { d.has_entries = false; }, "Object cannot be null"},
        {igmp, [&](auto& d) { group(d).source_count = 9; }, "ip_sources: 9 of at most 8"},
        {igmp, [&](auto& d) { group(d).source_count = 255; }, "ip_sources: 255 of at most 8"},
        {igmp, [&](auto& d) { group(d).port_count = 25; }, "ports: 25 of at most 24"},
        {igmp, [&](auto& d) { group(d).ports[1].kind = Switch_port_kind{4}; }, "port: 4 of at most 3"},
        {mac, [](auto& d) { d.mac_table[0].kind = Switch_port_kind{255}; }, "port: 255 of at most 3"},
        {mac, [](auto& d) { d.mac_table[0].type = Mac_entry_type{2}; }, "type: 2 of at most 1"},
    };
    for (const auto& [path, spoil, cause] : cases) {
        device = filled_device();
        spoil(device);
        take_log();
        EXPECT_EQ(get(path), failure(path)) << cause;
        EXPECT_THAT(take_log(), Contains(HasSubstr(cause)));
    }
}

/// 40,000 addresses, 4096 ONTs with counters of 4 ports: a walk that is not linear does not end here in time.
TEST_F(Subscribers, LargeTables) {
    const auto count = [&](const std::string& text, const std::string& path, const std::string& indices) {
        const auto whole = exchange(connection, fmt::format(R"({{"session_id":"{}","path":"{}","method":"get",)"
                                                            R"("indices":{}}})",
                                                            id, path, indices));
        std::size_t found = 0;
        for (auto at = whole.find(text); at != std::string::npos; at = whole.find(text, at + 1)) {
            ++found;
        }
        return found;
    };
    device.mac_table.resize(40'000, device.mac_table[0]);
    EXPECT_EQ(count("\"mac\":", mac, "[]"), 40'000U);
    Ont_eth_pm_history_data_3 record{};
    record.count = 4;
    set_counters(device, ont_information_eth_pm_history_data_3, record);
    EXPECT_EQ(count("\"Jabbers\":",
                    "monitoring.interface.ont.counters.ont_side.ethernet_performance_monitoring_history_data_3",
                    R"(["1-16"])"),
              4U * 4096);
}

} // namespace
} // namespace xpon::test
