#include "simulator/firmware/image_maker.hpp"
#include "tests/support/eventually.hpp"
#include "tests/system/olt.hpp"

#include <chrono>
#include <csignal>
#include <string>
#include <thread>

#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

/// The device goes down and comes back under the daemon, which stays.
class RebootTest : public testing::Test {
protected:
    [[nodiscard]] std::string command(client::Client& client, const std::string& path,
                                      const std::string& data = "") const {
        const auto rest = data.empty() ? "" : R"(,"data":)" + data;
        return ask_in_session(client, R"({"path":"command.)" + path + R"(","method":"command")" + rest + "}");
    }
    void must(const std::string& path, const std::string& data = "") {
        ASSERT_EQ(command(*admin, path, data), R"({"success":true,"session_id":"1"})") << path;
    }
    /// Sets and commits a host name.
    void rename(const std::string& name) {
        ask_in_session(*admin,
                       R"({"path":"configuration.CommonGCfg.hostname","method":"set","config_type":"candidate",)"
                       R"("data":{"hostname":")" +
                           name + R"("}})");
        must("commit");
    }
    [[nodiscard]] std::string name(const std::string& config_type) {
        return ask_in_session(*admin, R"({"path":"configuration.CommonGCfg.hostname","method":"get","config_type":")" +
                                          config_type + R"("})");
    }
    [[nodiscard]] std::string system_state() {
        return ask_in_session(*admin, R"({"path":"monitoring.system","method":"get"})");
    }
    void put_image() const {
        simulator::write_image(olt.root() / "firmware/new.img", simulator::make_image("1.5.0.1", 1024 * 1024, 0));
    }
    void log_in() {
        admin.emplace(Olt::log_in("admin"));
    }

    Olt olt;
    std::optional<client::Client> admin;
};

TEST_F(RebootTest, RunsWhatWasSavedAndChosen) {
    olt.start({"--plant", "empty", "--boot-s", "2"});
    log_in();
    rename("saved");
    must("save");
    rename("forgotten");
    put_image();
    must("olt.firmware.update", R"({"path":"/firmware/new.img"})");
    must("olt.firmware.select_image.alternate");
    must("reboot");
    // Without its peers the daemon answers at once, from what it has.
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_THAT(name("running"), HasSubstr(R"({"hostname":"saved"})"));
    EXPECT_THAT(name("candidate"), HasSubstr(R"({"hostname":"saved"})"));
    EXPECT_THAT(system_state(), HasSubstr(R"("success":false)"));
    EXPECT_THAT(command(*admin, "reboot"), HasSubstr(R"("success":false)"));
    EXPECT_EQ(Olt::log_in("viewer").session_id(), "2");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 2s);
    ASSERT_TRUE(eventually([this] { return system_state().find(R"("success":true)") != std::string::npos; }));
    EXPECT_THAT(system_state(), HasSubstr("1.5.0.1"));
    EXPECT_THAT(system_state(), HasSubstr("0 days, 00:00:"));
    rename("after");
    EXPECT_THAT(name("running"), HasSubstr(R"({"hostname":"after"})"));
}

TEST_F(RebootTest, ALostDeviceEndsAFirmwareUpdate) {
    olt.start({"--plant", "empty", "--firmware-write-s", "60"});
    log_in();
    put_image();
    const std::jthread killer([this] {
        EXPECT_TRUE(eventually(
            [this] { return std::filesystem::file_size(olt.root() / "firmware/SIM0A0000042/slot-1.img") < 100'000; }));
        olt.simulator().send_signal(SIGKILL);
    });
    EXPECT_THAT(command(*admin, "olt.firmware.update", R"({"path":"/firmware/new.img"})"),
                HasSubstr(R"("success":false)"));
    EXPECT_THAT(name("running"), HasSubstr(R"("success":true)"));
    ASSERT_TRUE(olt.simulator().wait());
    olt.start_simulator({"--plant", "empty"});
    EXPECT_THAT(command(*admin, "olt.firmware.select_image.alternate"), HasSubstr(R"("success":false)"));
    EXPECT_TRUE(eventually([this] {
        return command(*admin, "olt.firmware.update", R"({"path":"/firmware/new.img"})").find(R"("success":true)") !=
               std::string::npos;
    }));
}

} // namespace
} // namespace xpon::test
