// A program of its own, because the device's name is kept for the life of the process.

#include "tests/service/monitoring_fixture.hpp"

#include <fmt/format.h>

namespace xpon::test {
namespace {

TEST_F(MonitoringTest, ConstantsKeepTheFirstNameTheyGet) {
    const auto constants = [](const char* name) {
        return fmt::format(
            R"({{"success":true,"session_id":"","data":{{"DEVICE_NAME_SHORT":"{}","PON_PORT_COUNT":0,)"
            R"("FRONT_PORT_COUNT":0,"VLAN_COUNT":4094,"PORT_CHANNEL_COUNT":10,"ONT_TEMPLATE_COUNT":32,)"
            R"("PROFILE_PORTS_COUNT":64,"PROFILE_CROSS_CONNECT_COUNT":255,"PROFILE_MANAGEMENT_COUNT":32,)"
            R"("PROFILE_DBA_COUNT":255,"PROFILE_SHAPING_COUNT":32,"ONT_SERIAL_BIN_DATAMODEL_SIZE":10}}}})",
            name);
    };
    const auto* const frame = R"({"path":"monitoring.constants","method":"get"})";
    for (int call = 1; call <= 2; ++call) {
        device.calls = 0;
        device.failing_call = call;
        EXPECT_EQ(ask(frame), not_processed("monitoring.constants"));
    }
    EXPECT_EQ(ask(frame), constants("SIM-OLT-16"));
    set_text(device.factory.device_name, "Other");
    EXPECT_EQ(ask(frame), constants("SIM-OLT-16"));
}

} // namespace
} // namespace xpon::test
