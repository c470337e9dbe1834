// Commands to the device, firmware and the small utilities: what reaches the device, and what the client hears.

#include "tests/service/monitoring_fixture.hpp"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using namespace std::string_literals;

class Commands : public MonitoringTest {
protected:
    std::string convert(const std::string& path, const std::string& text) {
        return request(path, "call", R"("data":{"text":)" + text + "}");
    }
};

constexpr const char* there = "utils.text.obfuscate";
constexpr const char* back = "utils.text.deobfuscate";

TEST_F(Commands, ReachTheDevice) {
    struct Command {
        const char* path;
        const char* members;
        std::vector<std::string> journal;
    };
    const Command commands[] = {
        {"command.reboot", "", {"reboot 0"}},
        {"command.reconfigure.olt", "", {"reconfigure_olt"}},
        {"command.reconfigure.pon_port", R"("indices":["2,4-5"])", {"reconfigure_pon_port 2 4 5"}},
        {"command.reconfigure.ont", R"("indices":["1/1-2"])", {"reconfigure_ont 1/1 1/2"}},
        {"command.resettodefault.ont", R"("indices":["2/7"])", {"omci_default 2/7"}},
        {"command.reboot.ont",
         R"("indices":["3/2,1","1,16/256"])",
         {"omci_reboot 3/1 3/2", "omci_reboot 1/256 16/256"}},
        {"command.olt.firmware.update", R"("data":{"path":"/tmp/fw 1.bin"})", {"update_firmware /tmp/fw 1.bin"}},
        {"command.olt.firmware.update", R"("data":{"path":""})", {"update_firmware "}},
        {"command.olt.firmware.select_image.current", "", {"select_image 0 null"}},
        {"command.olt.firmware.select_image.alternate", "", {"select_image 1 null"}},
    };
    for (const auto& [path, members, journal] : commands) {
        device.journal.clear();
        EXPECT_EQ(request(path, "command", members), answer()) << path;
        EXPECT_EQ(device.journal, journal) << path;
    }
}

TEST_F(Commands, AStopEndsARequestAfterTheCallAtHand) {
    device.during_call = [this] { EXPECT_TRUE(service.stop({})); };
    EXPECT_EQ(request("command.reboot.ont", "command", R"("indices":["3/2","1"])"), failure("command.reboot.ont"));
    EXPECT_THAT(device.journal, testing::ElementsAre("omci_reboot 3/2"));
}

TEST_F(Commands, FirmwareWithoutAPath) {
    for (const auto* data : {R"("data":{"path":5})", R"("data":{"Path":"x"})", R"("data":["path"])", ""}) {
        take_log();
        EXPECT_EQ(request("command.olt.firmware.update", "command", data),
                  fmt::format(R"({{"success":false,"session_id":"{}","errors":[{{"message":)"
                              R"({{"key":"Index or request data cannot be parsed","params":{{}}}},)"
                              R"("path":"command.upload_firmware"}}]}})",
                              id));
        EXPECT_THAT(take_log(), Contains("Unable to parse payload")) << data;
    }
    EXPECT_THAT(device.journal, testing::IsEmpty());
}

TEST_F(Commands, TextsThereAndBack) {
    for (const auto& text : {""s, "secret"s, std::string(1024, 'x')}) {
        const auto answered = convert(there, "\"" + text + "\"");
        const auto form = answered.substr(answered.find("\"$ob1$"));
        EXPECT_EQ(convert(back, form.substr(0, form.rfind('"') + 1)), answer(R"({"text":")" + text + R"("})"));
    }
    EXPECT_EQ(convert(there, R"("secret")"), answer(R"({"text":"$ob1$XKLo5fQGMc5pbQ"})"));
}

TEST_F(Commands, TextsThatAreNone) {
    const auto* const none = "Object cannot be null";
    const std::tuple<const char*, std::string, const char*> cases[] = {
        {there, "", none},
        {back, R"("data":{})", none},
        {there, R"("data":{"Text":"x"})", none},
        {back, R"("data":"text")", none},
        {there, R"("data":{"text":12})", "Object must be a string"},
        {back, R"("data":{"text":["x"]})", "Object must be a string"},
        {back, R"("data":{"text":"plain secret"})", "C API function returned -1, errno=22"},
        {back, R"("data":{"text":"$ob2$AAAAAA"})", "C API function returned -1, errno=95"},
        {back, R"("data":{"text":"$ob1$AAAAAQ"})", "C API function returned -1, errno=74"},
        {back, R"("data":{"text":"$ob1$iPgwloih"})", "Text is not valid UTF-8"}, // of the bytes FF FE
        {there, R"("data":{"text":"plain secret)" + std::string(1013, 'x') + R"("})", ""},
    };
    for (const auto& [path, members, cause] : cases) {
        take_log();
        EXPECT_EQ(request(path, "call", members), failure(path)) << members;
        const auto log = take_log();
        EXPECT_THAT(log, Not(Contains(HasSubstr("plain secret"))));
        EXPECT_THAT(log, Contains(HasSubstr(fmt::format("Message: {}", cause)))) << members;
    }
}

} // namespace
} // namespace xpon::test
