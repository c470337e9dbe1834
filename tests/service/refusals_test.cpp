// Requests about the device that are wrong, and records of the device that contradict themselves.

#include "tests/service/monitoring_fixture.hpp"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <tuple>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using testing::Contains;
using testing::HasSubstr;

constexpr const char* engine_id = "configuration.CommonGCfg.system.snmp.engineID";
constexpr const char* system_route = "monitoring.system";
constexpr const char* logs = "monitoring.logs";
constexpr const char* front = "monitoring.interface.front_port.state";
constexpr const char* pon = "monitoring.interface.pon_port.state";
constexpr const char* onts = "monitoring.interface.ont.state";
constexpr const char* counters = "monitoring.interface.ont.counters.olt_side.gem_port";
constexpr const char* dhcp = "monitoring.ip.dhcp.sessions";
constexpr const char* pppoe = "monitoring.ip.pppoe.sessions";
constexpr const char* igmp = "monitoring.ip.igmp.snooping.groups";
constexpr const char* mac = "monitoring.mac";

class Refusals : public MonitoringTest {
protected:
    void expect_refusal(const std::string& path, const std::string& indices, const std::string& cause) {
        take_log();
        const auto* const method = path.starts_with("command") ? "command" : path == engine_id ? "generate" : "get";
        EXPECT_EQ(request(path, method, R"("indices":)" + indices), failure(path)) << indices;
        EXPECT_THAT(take_log(), Contains(HasSubstr("Message: " + cause))) << path;
    }
};

TEST_F(Refusals, OfAnAbsentIgmpDaemon) {
    peers->absent.insert({0x08fffe});
    device.calls = 0;
    expect_refusal(igmp, "[]", "IGMP is unavailable.");
    EXPECT_EQ(device.calls, 0);
}

TEST_F(Refusals, OfWrongIndices) {
    const auto* const out_of_range = "C API function returned -1, errno=34.";
    const auto* const no_number = "C API function returned -1, errno=22.";
    const auto* const one = "Indices must contain exactly one element.";
    const auto* const no_ont = "Indices must contain pon-port numbers and optionally ont numbers.";
    std::string too_many = R"(["1/1")";
    for (int i = 0; i < 4096; ++i) {
        too_many += R"(,"1/1")";
    }
    const std::tuple<const char*, std::string, const char*> cases[] = {
        {front, "[]", one},
        {front, R"(["1","2"])", one},
        {front, R"(["17"])", out_of_range},
        {pon, "[]", one},
        {pon, R"(["1","2"])", one},
        {pon, R"(["1-"])", no_number},
        {counters, "[]", no_ont},
        {counters, R"(["1","1","1"])", no_ont},
        {counters, R"(["0"])", no_ont},
        {counters, R"(["1","257"])", no_ont},
        {counters, R"(["1/1"])", no_ont},
        {onts, R"(["1"])", "Indices cannot contain a single element."},
        {onts, R"(["1","1","1"])", "Indices must contain no more than two elements."},
        {onts, R"(["1","257"])", out_of_range},
        {mac, R"(["1","1"])", "Indices cannot contain more than 1 element."},
        {mac, R"(["1/"])", no_number},
        {"command.reconfigure.pon_port", "[]", one},
        {"command.reconfigure.pon_port", R"(["1","2"])", one},
        {"command.reconfigure.pon_port", R"(["17"])", out_of_range},
        {"command.reconfigure.ont", "[]", "Indices must contain some elements."},
        {"command.reboot.ont", R"(["1/1","1/257"])", out_of_range},
        {"command.resettodefault.ont", R"(["1/1","x"])", no_number},
        {"command.resettodefault.ont", too_many + "]", "Indices must contain no more than 4096 elements."},
    };
    for (const auto& [path, indices, cause] : cases) {
        expect_refusal(path, indices, cause);
    }
    EXPECT_THAT(device.journal, testing::IsEmpty());
}

TEST_F(Refusals, OfRecordsThatContradictThemselves) {
    struct Hostile {
        const char* path;
        std::function<void(FakeDevice&)> spoil;
        const char* cause;
    };
    const auto without_entries = [](auto& d) { d.has_entries = false; };
    const auto group = [](FakeDevice& d) -> Igmp_group& { return d.vlans[201].groups[0]; };
    constexpr auto first_group =
        offsetof(Ont__get_gem_port_counters_response, entries) + offsetof(Ont_gem_port_counters, group);
    const Hostile cases[] = {
        {system_route, [&](auto& d) { d.environment.fan_count = 9; }, "fans: 9 of at most 8"},
        {system_route, [&](auto& d) { d.environment.temp_sensor_count = 255; }, "temp_sensors: 255 of at most 8"},
        {system_route, [&](auto& d) { d.environment.temp_sensors[1].id = Brd_api__temp_id{5}; }, "id: 5 of at most 4"},
        {system_route, [&](auto& d) { d.environment.power_sources[0].type = Brd__ps_type{3}; }, "type: 3 of at most 2"},
        {system_route, [&](auto& d) { d.next_boot_slot = 2; }, "firmware slot 2 of 0 and 1"},
        {front, [&](auto& d) { d.front_ports[1].sfp.condition = sfp_condition{3}; }, "sfp_condition: unknown value 3"},
        {front, [&](auto& d) { d.link_up.size = 4000; }, "C API function returned -1, errno=22"},
        {pon, [&](auto& d) { d.pon_states->count = 17; }, "PON port states: 17 of at most 16"},
        {pon, [&](auto& d) { d.pon_modules->count = 0; }, "PON port modules: nothing of port 1"},
        {pon, [&](auto& d) { d.pon_states.reset(); }, "Object cannot be null"},
        {pon, [&](auto& d) { d.pon_modules.reset(); }, "Object cannot be null"},
        {onts, [&](auto& d) { d.activated[0].alloc_count = 10; }, "alloc_ids: 10 of at most 9"},
        {onts, without_entries, "Object cannot be null"},
        {counters, [&](auto& d) { d.counters.clear(); }, "Object cannot be null"},
        {counters, [&](auto& d) { d.counters[ont_information_olt_gem_port][first_group] = std::byte{3}; },
         "group: 3 of at most"},
        {dhcp, without_entries, "Object cannot be null"},
        {pppoe, without_entries, "Object cannot be null"},
        {igmp, without_entries, "Object cannot be null"},
        {igmp, [&](auto& d) { group(d).source_count = 9; }, "ip_sources: 9 of at most 8"},
        {igmp, [&](auto& d) { group(d).port_count = 25; }, "ports: 25 of at most 24"},
        {igmp, [&](auto& d) { group(d).ports[1].kind = Switch_port_kind{4}; }, "port: 4 of at most 3"},
        {mac, without_entries, "Object cannot be null"},
        {mac, [](auto& d) { d.mac_table[0].kind = Switch_port_kind{255}; }, "port: 255 of at most 3"},
        {mac, [](auto& d) { d.mac_table[0].type = Mac_entry_type{2}; }, "type: 2 of at most 1"},
    };
    for (const auto& [path, spoil, cause] : cases) {
        device = filled_device();
        spoil(device);
        expect_refusal(path,
                       path == front || path == pon ? R"(["1"])"
                       : path == counters           ? R"(["1","1"])"
                                                    : "[]",
                       cause);
    }
    device.log_files = {"events.log", nullptr};
    EXPECT_EQ(get(logs), failure(logs));
}

TEST_F(Refusals, AreNotForOddTexts) {
    const auto fill = [](auto& buffer, char with) { std::ranges::fill(buffer, with); };
    fill(device.activated[0].equipment_id, '\xff'); // and no end
    std::ranges::copy("\x1b[2J\xc3\xa9", device.activated[0].hardware_version);
    fill(device.unactivated[1].password, '\n');
    const auto states = get(onts);
    EXPECT_EQ(occurrences(states, R"(\\xFF)"), 21U);
    EXPECT_EQ(occurrences(states, R"("password":"\\x0A)"), 1U);
    EXPECT_THAT(states, HasSubstr("\"hardware_version\":\"\\\\x1B[2J\xc3\xa9\""));

    fill(device.slots[0].version, '\x80');
    fill(device.factory.mac_address, 'x');
    EXPECT_THAT(get(system_route),
                testing::AllOf(HasSubstr(R"(fw":"\\x80\\x80)"), HasSubstr(R"("mac_address":"xxxxxxxxxxxxxxxxxxxx")")));
}

TEST_F(Refusals, OfStatesThatDoNotGoWithTheConfiguration) {
    const auto known = device.activated[0];
    auto third = known;
    std::ranges::copy(serial_of(3), third.serial);
    auto unknown = known;
    std::ranges::copy(serial_of(7), unknown.serial);
    for (const auto& states : {std::vector{third, known}, // not in the order of the configuration
                               std::vector{known, unknown}, std::vector(5000, known)}) {
        device.activated = states;
        expect_refusal(onts, "[]", "The number of received states is greater than requested");
        EXPECT_EQ(request("utils.ont.find", "call", R"("data":{"serial":[83,73,77,85,0,0,0,7,0,0]})"),
                  failure("utils.ont.find"));
    }
}

} // namespace
} // namespace xpon::test
