// What clients read of the device: whole answers, every library call failing, records that contradict themselves.

#include "tests/service/monitoring_fixture.hpp"

#include <algorithm>
#include <functional>

#include <sys/utsname.h>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsSupersetOf;
using namespace std::string_literals;

class Monitoring : public MonitoringTest {
protected:
    std::string front_ports(const std::string& range) {
        return get("monitoring.interface.front_port.state", R"("indices":[")" + range + R"("])");
    }
    std::string pon_ports(const std::string& range) {
        return get("monitoring.interface.pon_port.state", R"("indices":[")" + range + R"("])");
    }
};

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
    EXPECT_EQ(front_ports("1-2,4,3"),
              answer(R"([{"port":1,"status":"UP","speed":"10G","sfp_condition":"Warning",)"
                     R"("sfp":{"vendor":"Acme","part_number":"A-1","revision":"B","media":"10GBASE-LR"},)"
                     R"("eddi":{"temperature_c":38.5,"voltage_v":3.29,"tx_bias_current_ma":31,"tx_power_mw":0.61}},)"
                     R"({"port":2,"status":"DOWN","speed":"none","sfp_condition":"Absent"},)"
                     R"({"port":3,"status":"DOWN","speed":"none","sfp_condition":"ExcludePolling"},)"
                     R"({"port":4,"status":"SHUTDOWN","speed":"1G","sfp_condition":"Warning",)"
                     R"("sfp":{"vendor":"Acme","part_number":"A-1","revision":"B","media":"1000BASE-T"}}])"));
}

TEST_F(Monitoring, PonPorts) {
    EXPECT_EQ(pon_ports("1-3"),
              answer(R"([{"port":1,"state":"ACTIVE","pon_type":"GPON","ont_count":2,"sfp_condition":"Warning",)"
                     R"("sfp":{"vendor":"Acme","part_number":"A-1","revision":"B"},)"
                     R"("eddi":{"temperature_c":45,"voltage_v":3.3,"tx_bias_current_ma":12.5,"tx_power_dbm":3.7}},)"
                     R"({"port":2,"state":"NO_MODULE","pon_type":"GPON","ont_count":0,"sfp_condition":"Absent"},)"
                     R"({"port":3,"state":"FAULT","pon_type":"GPON","ont_count":0,"sfp_condition":"Warning",)"
                     R"("sfp":{"vendor":"Acme","part_number":"A-1","revision":"B"}}])"));
}

TEST_F(Monitoring, PortRanges) {
    for (const auto* path : {"monitoring.interface.front_port.state", "monitoring.interface.pon_port.state"}) {
        for (const auto* indices : {"[]", R"(["1","2"])"}) {
            EXPECT_EQ(get(path, R"("indices":)"s + indices), failure(path));
            EXPECT_THAT(take_log(),
                        Contains(fmt::format("get {}: Error: InvalidInputArg. Message: Indices must contain exactly "
                                             "one element.",
                                             path)));
        }
        for (const auto* range : {"0", "17", "1-", "x", ""}) {
            EXPECT_EQ(get(path, fmt::format(R"("indices":["{}"])", range)), failure(path)) << range;
        }
    }
}

TEST_F(Monitoring, LogFiles) {
    EXPECT_EQ(get("monitoring.logs"), answer(R"({"log_files":["events.log","api-service.log"]})"));
    device.log_files.clear();
    EXPECT_EQ(get("monitoring.logs"), answer(R"({"log_files":[]})"));
    device.log_files = {"events.log", nullptr, "igmp.log"};
    EXPECT_EQ(get("monitoring.logs"), failure("monitoring.logs"));
    EXPECT_THAT(take_log(), Contains("An std::exception was thrown: basic_string: construction from null is not "
                                     "valid "));
}

TEST_F(Monitoring, EveryFailingCallFailsTheRequest) {
    struct Route {
        const char* path;
        const char* indices;
        std::vector<std::string> texts;
    };
    const Route routes[] = {
        {"monitoring.system", "[]", {}},
        {"monitoring.logs", "[]", {}},
        {"monitoring.interface.front_port.state", R"(["1-4"])", {"Failed to retrieve front port info"}},
        {"monitoring.interface.pon_port.state",
         R"(["1-3"])",
         {"Could not retrieve state for PON ports",
          "Could not retrieve extended information about PON-port plugged SFP modules",
          "Failed to retrieve pon port info"}},
        {"monitoring.interface.ont.state", "[]", {}},
        {"monitoring.interface.ont.counters.olt_side.pon", R"(["1","1-3"])", {}},
        {"monitoring.ip.dhcp.sessions", "[]", {}},
        {"monitoring.ip.pppoe.sessions", "[]", {}},
        {"monitoring.ip.igmp.snooping.groups", "[]", {}},
        {"monitoring.mac", "[]", {}},
        {"monitoring.mac", R"(["1/1"])", {}},
    };
    for (const auto& [path, indices, texts] : routes) {
        const auto members = R"("indices":)"s + indices;
        device.calls = 0;
        device.failing_call = 0;
        const auto whole = get(path, members);
        // The groups of each VLAN are asked for alike.
        const int calls = std::min(device.calls, 20);
        EXPECT_GT(calls, 0) << path;
        take_log();
        for (int call = 1; call <= calls; ++call) {
            device.calls = 0;
            device.failing_call = call;
            const auto answered = get(path, members);
            // A module without diagnostics is no failure; front port 1's are asked in the third call.
            const bool may_fail = path == "monitoring.interface.front_port.state"s && (call == 3 || call == 7);
            EXPECT_EQ(answered == failure(path), !may_fail) << path << " call " << call << ": " << answered;
        }
        const auto log = take_log();
        EXPECT_THAT(log, Contains("C API function returned -1, errno=5")) << path;
        EXPECT_THAT(log, IsSupersetOf(texts)) << path;
        device.failing_call = 0;
        EXPECT_EQ(get(path, members), whole);
    }
}

TEST_F(Monitoring, RecordsThatContradictThemselvesAreRefused) {
    struct Hostile {
        const char* path;
        std::function<void(FakeDevice&)> spoil;
        const char* cause;
    };
    const auto fill = [](auto& buffer) { std::ranges::fill(buffer, 'x'); };
    const auto* const system = "monitoring.system";
    const auto* const front = "monitoring.interface.front_port.state";
    const auto* const pon = "monitoring.interface.pon_port.state";
    const auto* const onts = "monitoring.interface.ont.state";
    const Hostile cases[] = {
        {system, [&](auto& d) { d.environment.fan_count = 9; }, "fans: 9 of at most 8"},
        {system, [&](auto& d) { d.environment.temp_sensor_count = 255; }, "temp_sensors: 255 of at most 8"},
        {system, [&](auto& d) { d.environment.temp_sensors[1].id = Brd_api__temp_id{5}; }, "id: 5 of at most 4"},
        {system, [&](auto& d) { d.environment.power_sources[0].type = Brd__ps_type{3}; }, "type: 3 of at most 2"},
        {system, [&](auto& d) { fill(d.environment.power_sources[0].date); }, "date: no end within 16 bytes"},
        {system, [&](auto& d) { fill(d.slots[0].version); }, "no end within 32 bytes"},
        {system, [&](auto& d) { d.next_boot_slot = 2; }, "firmware slot 2 of 0 and 1"},
        {system, [&](auto& d) { fill(d.uptime); }, "no end within 64 bytes"},
        {system, [&](auto& d) { fill(d.factory.mac_address); }, "mac_address: no end within 20 bytes"},
        {front, [&](auto& d) { fill(d.front_ports[1].sfp.vendor); }, "vendor: no end within 17 bytes"},
        {front, [&](auto& d) { fill(d.front_ports[1].media); }, "media: no end within 24 bytes"},
        {front, [&](auto& d) { d.front_ports[1].sfp.condition = sfp_condition{3}; }, "sfp_condition: unknown value 3"},
        {front, [&](auto& d) { d.link_up.size = 4000; }, "C API function returned -1, errno=22"},
        {pon, [&](auto& d) { d.pon_states->count = 17; }, "PON port states: 17 of at most 16"},
        {pon, [&](auto& d) { d.pon_modules->count = 0; }, "PON port modules: nothing of port 1"},
        {pon, [&](auto& d) { d.pon_states.reset(); }, "Object cannot be null"},
        {pon, [&](auto& d) { d.pon_modules.reset(); }, "Object cannot be null"},
        {onts, [&](auto& d) { fill(d.activated[0].equipment_id); }, "equipment_id: no end within 21 bytes"},
        {onts, [&](auto& d) { d.activated[0].alloc_count = 10; }, "alloc_ids: 10 of at most 9"},
        {onts, [&](auto& d) { fill(d.unactivated[1].password); }, "password: no end within 11 bytes"},
        {onts, [&](auto& d) { d.has_entries = false; }, "Object cannot be null"},
    };
    for (const auto& [path, spoil, cause] : cases) {
        device = filled_device();
        spoil(device);
        const auto* const indices = path == onts ? "[]" : R"(["1"])";
        take_log();
        EXPECT_EQ(get(path, R"("indices":)"s + indices), failure(path)) << cause;
        EXPECT_THAT(take_log(), Contains(HasSubstr(cause)));
    }
}

} // namespace
} // namespace xpon::test
