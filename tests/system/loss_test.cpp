#include "simulator/firmware/image_maker.hpp"
#include "tests/support/eventually.hpp"
#include "tests/system/olt.hpp"

#include <chrono>
#include <csignal>
#include <string>

#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::HasSubstr;

std::string command(client::Client& client, const std::string& path, const std::string& data = "null") {
    return ask_in_session(client, R"({"path":"command.)" + path + R"(","method":"command","data":)" + data + "}");
}

std::string running_name(client::Client& client) {
    return ask_in_session(client,
                          R"({"path":"configuration.CommonGCfg.hostname","method":"get","config_type":"running"})");
}

/// Sets and commits a host name, and reads it back.
void rename_olt(client::Client& client, const std::string& name) {
    const auto done = R"({"success":true,"session_id":")" + client.session_id();
    EXPECT_EQ(ask_in_session(client, R"({"path":"configuration.CommonGCfg.hostname","method":"set",)"
                                     R"("config_type":"candidate","data":{"hostname":")" +
                                         name + R"("}})"),
              done + R"("})");
    EXPECT_EQ(command(client, "commit"), done + R"("})");
    EXPECT_EQ(running_name(client), done + R"(","data":{"hostname":")" + name + R"("}})");
}

std::string system_state(client::Client& client) {
    return ask_in_session(client, R"({"path":"monitoring.system","method":"get"})");
}

/// The device goes down and comes back under the daemon, which stays.
TEST(Loss, OfARebootingDeviceEndsWithWhatWasSavedAndChosen) {
    Olt olt;
    olt.start({"--plant", "empty", "--boot-s", "2"});
    simulator::write_image(olt.root() / "firmware/new.img", simulator::make_image("1.5.0.1", 1024 * 1024, 0));
    auto admin = Olt::log_in("admin");
    rename_olt(admin, "saved");
    command(admin, "save");
    rename_olt(admin, "forgotten");
    command(admin, "olt.firmware.update", R"({"path":"/firmware/new.img"})");
    command(admin, "olt.firmware.select_image.alternate");
    ASSERT_EQ(command(admin, "reboot"), R"({"success":true,"session_id":"1"})");
    // Without its peers the daemon answers at once, from what it has.
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_THAT(running_name(admin), HasSubstr(R"({"hostname":"saved"})"));
    EXPECT_THAT(system_state(admin), HasSubstr(R"("success":false)"));
    EXPECT_THAT(command(admin, "reboot"), HasSubstr(R"("success":false)"));
    EXPECT_EQ(Olt::log_in("viewer").session_id(), "2");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 2s);
    ASSERT_TRUE(eventually([&] { return system_state(admin).find(R"("success":true)") != std::string::npos; }));
    EXPECT_THAT(system_state(admin), AllOf(HasSubstr("1.5.0.1"), HasSubstr("0 days, 00:00:")));
    rename_olt(admin, "after");
}

TEST(Loss, PeersMayDieAndReturn) {
    Olt olt;
    olt.start();
    auto client = Olt::log_in("admin");
    rename_olt(client, "before");

    olt.simulator().send_signal(SIGKILL);
    ASSERT_EQ(olt.simulator().wait(), 128 + SIGKILL);
    // The configuration does not depend on the peers, and nobody waits for the dead.
    const auto begin = std::chrono::steady_clock::now();
    rename_olt(client, "without-peers");
    EXPECT_EQ(Olt::log_in("viewer").session_id(), "2");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 2s);

    olt.start_simulator();
    rename_olt(client, "with-peers-again");
}

} // namespace
} // namespace xpon::test
