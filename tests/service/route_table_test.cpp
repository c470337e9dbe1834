#include "api_service/protocol/route_table.hpp"
#include "tests/service/service_fixture.hpp"

#include <iterator>
#include <tuple>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using api_service::PrivilegeLevel;
using api_service::route_table;

struct Expected {
    const char* path;
    const char* method;
    PrivilegeLevel privilege;
};

using enum PrivilegeLevel;

/// The whole interface, in the order of its description.
constexpr Expected expected[] = {
    // clang-format off
    {"test.echo",                                                                                   "echo",     Nothing},
    {"test.echo.view",                                                                              "echo",     Viewer},
    {"test.echo.admin",                                                                             "echo",     Administrator},
    {"auth",                                                                                        "auth",     Nothing},
    {"unauth",                                                                                      "auth",     Nothing},
    {"monitoring.system",                                                                           "get",      Viewer},
    {"monitoring.interface.front_port.state",                                                       "get",      Viewer},
    {"monitoring.interface.pon_port.state",                                                         "get",      Viewer},
    {"monitoring.interface.ont.counters.ont_side.gem_port_performance_monitoring",                  "get",      Viewer},
    {"monitoring.interface.ont.counters.ont_side.gem_port_nctp_performance_monitoring",             "get",      Viewer},
    {"monitoring.interface.ont.counters.ont_side.ethernet_performance_monitoring_history_data",     "get",      Viewer},
    {"monitoring.interface.ont.counters.ont_side.ethernet_performance_monitoring_history_data_2",   "get",      Viewer},
    {"monitoring.interface.ont.counters.ont_side.ethernet_performance_monitoring_history_data_3",   "get",      Viewer},
    {"monitoring.interface.ont.counters.ont_side.gal_ethernet_performance_monitoring_history_data", "get",      Viewer},
    {"monitoring.interface.ont.counters.ont_side.fec_performance_monitoring_history_data",          "get",      Viewer},
    {"monitoring.interface.ont.counters.ont_side.ethernet_frame_extended_performance_monitoring",   "get",      Viewer},
    {"monitoring.interface.ont.counters.olt_side.gem_port",                                         "get",      Viewer},
    {"monitoring.interface.ont.counters.olt_side.pon",                                              "get",      Viewer},
    {"utils.text.obfuscate",                                                                        "call",     Administrator},
    {"utils.text.deobfuscate",                                                                      "call",     Administrator},
    {"utils.ont.find",                                                                              "call",     Viewer},
    {"command.default",                                                                             "command",  Administrator},
    {"command.save",                                                                                "command",  Administrator},
    {"command.reboot",                                                                              "command",  Administrator},
    {"monitoring.logs",                                                                             "get",      Viewer},
    {"command.reconfigure.pon_port",                                                                "command",  Administrator},
    {"command.reconfigure.ont",                                                                     "command",  Operator},
    {"command.resettodefault.ont",                                                                  "command",  Operator},
    {"command.reboot.ont",                                                                          "command",  Operator},
    {"command.commit",                                                                              "command",  Operator},
    {"command.rollback",                                                                            "command",  Administrator},
    {"command.reconfigure.olt",                                                                     "command",  Administrator},
    {"command.olt.firmware.update",                                                                 "command",  Administrator},
    {"command.olt.firmware.select_image.current",                                                   "command",  Administrator},
    {"command.olt.firmware.select_image.alternate",                                                 "command",  Administrator},
    {"monitoring.ip.dhcp.sessions",                                                                 "get",      Viewer},
    {"monitoring.ip.pppoe.sessions",                                                                "get",      Viewer},
    {"monitoring.ip.igmp.snooping.groups",                                                          "get",      Viewer},
    {"monitoring.constants",                                                                        "get",      Nothing},
    {"configuration.CommonGCfg.system.snmp.engineID",                                               "generate", Viewer},
    {"configuration.CommonGCfg.management",                                                         "get",      Viewer},
    {"configuration.CommonGCfg.management",                                                         "set",      Administrator},
    {"configuration.CommonGCfg.system.oob",                                                         "get",      Viewer},
    {"configuration.CommonGCfg.system.oob",                                                         "set",      Administrator},
    {"configuration.CommonGCfg.system.fan_speed",                                                   "get",      Viewer},
    {"configuration.CommonGCfg.system.reset_status",                                                "get",      Viewer},
    {"configuration.ZebGCfg.switch_config.front_port",                                              "get",      Viewer},
    {"configuration.ZebGCfg.switch_config.front_port",                                              "set",      Administrator},
    {"configuration.ZebGCfg.switch_config.port_channel",                                            "get",      Viewer},
    {"configuration.ZebGCfg.switch_config.port_channel",                                            "set",      Administrator},
    {"configuration.ZebGCfg.pon.port_state",                                                        "get",      Viewer},
    {"configuration.ZebGCfg.pon.port_state",                                                        "set",      Administrator},
    {"configuration.CommonGCfg.system.ntp",                                                         "get",      Viewer},
    {"configuration.CommonGCfg.system.ntp",                                                         "set",      Administrator},
    {"configuration.CommonGCfg.system.snmp",                                                        "get",      Viewer},
    {"configuration.CommonGCfg.system.snmp",                                                        "set",      Administrator},
    {"configuration.CommonGCfg.profiles.profiles_ont.ont_template",                                 "get",      Viewer},
    {"configuration.CommonGCfg.profiles.profiles_ont.ont_template",                                 "set",      Administrator},
    {"configuration.CommonGCfg.profiles.profiles_ont.ports",                                        "get",      Viewer},
    {"configuration.CommonGCfg.profiles.profiles_ont.ports",                                        "set",      Administrator},
    {"configuration.CommonGCfg.profiles.profiles_ont.cross_connect",                                "get",      Viewer},
    {"configuration.CommonGCfg.profiles.profiles_ont.cross_connect",                                "set",      Administrator},
    {"configuration.CommonGCfg.profiles.profiles_ont.management",                                   "get",      Viewer},
    {"configuration.CommonGCfg.profiles.profiles_ont.management",                                   "set",      Administrator},
    {"configuration.CommonGCfg.profiles.profiles_ont.dba",                                          "get",      Viewer},
    {"configuration.CommonGCfg.profiles.profiles_ont.dba",                                          "set",      Administrator},
    {"configuration.CommonGCfg.profiles.profiles_ont.shaping",                                      "get",      Viewer},
    {"configuration.CommonGCfg.profiles.profiles_ont.shaping",                                      "set",      Administrator},
    {"configuration.ZebGCfg.pon.ont",                                                               "get",      Viewer},
    {"configuration.ZebGCfg.pon.ont",                                                               "set",      Operator},
    {"configuration.ZebGCfg.pon.ont",                                                               "delete",   Operator},
    {"configuration.ZebGCfg.pon.ont.service",                                                       "get",      Viewer},
    {"configuration.ZebGCfg.pon.ont.service",                                                       "set",      Administrator},
    {"monitoring.mac",                                                                              "get",      Viewer},
    {"monitoring.interface.ont.state",                                                              "get",      Viewer},
    {"configuration.CommonGCfg.system.settings.ont_sn_format",                                      "get",      Viewer},
    {"configuration.CommonGCfg.system.settings.ont_sn_format",                                      "set",      Administrator},
    {"configuration.CommonGCfg.hostname",                                                           "get",      Viewer},
    {"configuration.CommonGCfg.hostname",                                                           "set",      Administrator},
    // clang-format on
};

class RouteTable : public ServiceTest {};

TEST_F(RouteTable, EveryRouteIsRefusedBelowItsPrivilegeAndReachedFromThereOn) {
    struct Caller {
        const char* user;
        PrivilegeLevel level;
    };
    for (const auto& [user, level] : {Caller{"", Nothing}, Caller{"viewer", Viewer}, Caller{"operator", Operator},
                                      Caller{"admin", Administrator}}) {
        for (const auto& [path, method, privilege] : expected) {
            const auto id = level == Nothing ? std::string() : log_in(user);
            const auto session = id.empty() ? std::string() : fmt::format(R"("session_id":"{}",)", id);
            const auto answer = ask(fmt::format(R"({{{}"path":"{}","method":"{}"}})", session, path, method));
            const auto where = fmt::format("{} {} as '{}'", method, path, user);
            EXPECT_THAT(answer, testing::StartsWith(R"({"success":)")) << where;
            EXPECT_EQ(answer == access_denied(id), level < privilege) << where;
        }
    }
}

TEST(RouteTableRows, AreThoseOfTheInterface) {
    const auto rows = route_table();
    ASSERT_EQ(rows.size(), std::size(expected));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto& row = rows[i];
        EXPECT_EQ(std::tuple(std::string(row.path), std::string(row.method), row.privilege),
                  std::tuple(std::string(expected[i].path), std::string(expected[i].method), expected[i].privilege))
            << "row " << i + 1;
        const bool on_onts = std::string_view(row.path).starts_with("configuration.ZebGCfg.pon.ont");
        EXPECT_EQ(row.make_pre_hooks({}).size(), on_onts ? 1U : 0U) << row.path;
    }
}

} // namespace
} // namespace xpon::test
