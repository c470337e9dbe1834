// Commands to the device, firmware and the small utilities: what reaches the device, and what the client hears.

#include "tests/service/monitoring_fixture.hpp"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using namespace std::string_literals;

using Journal = std::vector<std::string>;

class Commands : public MonitoringTest {
protected:
    std::string send(const std::string& path, const std::string& members = "", const std::string& method = "command") {
        return ask(fmt::format(R"({{"session_id":"{}","path":"{}","method":"{}"{}{}}})", admin, path, method,
                               members.empty() ? "" : ",", members));
    }
    std::string succeeded(const std::string& data = "") const {
        return fmt::format(R"({{"success":true,"session_id":"{}"{}{}}})", admin, data.empty() ? "" : R"(,"data":)",
                           data);
    }
    std::string failed(const std::string& path) const {
        return not_processed(path, admin);
    }
    std::string convert(const std::string& path, const std::string& text) {
        return send(path, R"("data":{"text":)" + text + "}", "call");
    }

    const std::string admin = log_in("admin");
};

struct Command {
    const char* path;
    const char* members;
    Journal journal;
};

const Command good_commands[] = {
    {"command.reboot", "", {"reboot 0"}},
    {"command.reconfigure.olt", "", {"reconfigure_olt"}},
    {"command.reconfigure.pon_port", R"("indices":["2,4-5"])", {"reconfigure_pon_port 2 4 5"}},
    {"command.reconfigure.ont", R"("indices":["1/1-2"])", {"reconfigure_ont 1/1 1/2"}},
    {"command.resettodefault.ont", R"("indices":["2/7"])", {"omci_default 2/7"}},
    {"command.reboot.ont", R"("indices":["3/2,1","1,16/256"])", {"omci_reboot 3/1 3/2", "omci_reboot 1/256 16/256"}},
    {"command.olt.firmware.update", R"("data":{"path":"/tmp/fw 1.bin"})", {"update_firmware /tmp/fw 1.bin"}},
    {"command.olt.firmware.update", R"("data":{"path":""})", {"update_firmware "}},
    {"command.olt.firmware.select_image.current", "", {"select_image 0 null"}},
    {"command.olt.firmware.select_image.alternate", "", {"select_image 1 null"}},
};

TEST_F(Commands, ReachTheDevice) {
    for (const auto& [path, members, journal] : good_commands) {
        device.journal.clear();
        EXPECT_EQ(send(path, members), succeeded()) << path;
        EXPECT_EQ(device.journal, journal) << path;
    }
}

TEST_F(Commands, WhatTheDeviceRefusesFails) {
    for (const auto& [path, members, journal] : good_commands) {
        device.journal.clear();
        device.calls = 0;
        device.failing_call = static_cast<int>(journal.size());
        take_log();
        EXPECT_EQ(send(path, members), failed(path)) << path;
        EXPECT_THAT(take_log(), Contains("C API function returned -1, errno=5")) << path;
        EXPECT_EQ(device.journal, Journal(journal.begin(), journal.end() - 1)) << path;
    }
}

TEST_F(Commands, WrongIndicesDoNothing) {
    std::string too_many = R"("indices":["1/1")";
    for (int i = 0; i < 4096; ++i) {
        too_many += R"(,"1/1")";
    }
    too_many += "]";
    const std::tuple<const char*, std::string, const char*> cases[] = {
        {"command.reconfigure.pon_port", "", "Indices must contain exactly one element"},
        {"command.reconfigure.pon_port", R"("indices":["1","2"])", "Indices must contain exactly one element"},
        {"command.reconfigure.pon_port", R"("indices":["17"])", "C API function returned -1, errno=34"},
        {"command.reboot.ont", "", "Indices must contain some elements"},
        {"command.reconfigure.ont", R"("indices":[])", "Indices must contain some elements"},
        {"command.reboot.ont", R"("indices":["1/1","1/257"])", "C API function returned -1, errno=34"},
        {"command.resettodefault.ont", R"("indices":["1/1","x"])", "C API function returned -1, errno=22"},
        {"command.resettodefault.ont", too_many, "Indices must contain no more than 4096 elements"},
    };
    for (const auto& [path, members, cause] : cases) {
        take_log();
        EXPECT_EQ(send(path, members), failed(path)) << cause;
        EXPECT_THAT(take_log(), Contains(EndsWith(fmt::format("Message: {}.", cause)))) << path;
        EXPECT_THAT(device.journal, IsEmpty());
    }
}

TEST_F(Commands, FirmwareWithoutAPath) {
    for (const auto* data : {R"("data":{"path":5})", R"("data":{"Path":"x"})", R"("data":{"path":null})",
                             R"("data":["path"])", R"("data":{})", ""}) {
        take_log();
        EXPECT_EQ(send("command.olt.firmware.update", data),
                  fmt::format(R"({{"success":false,"session_id":"{}","errors":[{{"message":)"
                              R"({{"key":"Index or request data cannot be parsed","params":{{}}}},)"
                              R"("path":"command.upload_firmware"}}]}})",
                              admin))
            << data;
        EXPECT_THAT(take_log(), Contains("Unable to parse payload"));
    }
    EXPECT_THAT(device.journal, IsEmpty());
}

TEST_F(Commands, SnmpEngineId) {
    const auto* const path = "configuration.CommonGCfg.system.snmp.engineID";
    EXPECT_EQ(request(path, "generate"), answer(R"("80007ed90302534a4d0001")"));
    std::ranges::fill(device.snmp.engine_id, 'a');
    EXPECT_EQ(request(path, "generate"), failure(path));
    EXPECT_THAT(take_log(), Contains(HasSubstr("no end within 65 bytes")));
    device = filled_device();
    device.failing_call = 1;
    EXPECT_EQ(request(path, "generate"), failure(path));
    EXPECT_THAT(take_log(), Contains("C API function returned -1, errno=5"));
}

TEST_F(Commands, TextsThereAndBack) {
    const auto* const there = "utils.text.obfuscate";
    const auto* const back = "utils.text.deobfuscate";
    const auto long_text = "\"" + std::string(1024, 'x') + "\"";
    for (const auto& [plain, form] : {std::pair{R"("")"s, R"("$ob1$AAAAAA")"s},
                                      {R"("a")", R"("$ob1$6Le-Q00")"},
                                      {R"("secret")", R"("$ob1$XKLo5fQGMc5pbQ")"}}) {
        EXPECT_EQ(convert(there, plain), succeeded(R"({"text":)" + form + "}"));
        EXPECT_EQ(convert(back, form), succeeded(R"({"text":)" + plain + "}"));
    }
    EXPECT_EQ(convert(back, R"("")"), succeeded(R"({"text":""})"));
    const auto whole = convert(there, long_text);
    const auto begin = whole.find("\"$ob1$");
    ASSERT_NE(begin, std::string::npos);
    EXPECT_EQ(convert(back, whole.substr(begin, whole.rfind('"') + 1 - begin)),
              succeeded(R"({"text":)" + long_text + "}"));
}

TEST_F(Commands, TextsThatAreNone) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"", "Object cannot be null", "Object cannot be null"},
        {R"("data":{})", "Object cannot be null", "Object cannot be null"},
        {R"("data":{"Text":"x"})", "Object cannot be null", "Object cannot be null"},
        {R"("data":"text")", "Object cannot be null", "Object cannot be null"},
        {R"("data":{"text":12})", "Object must be a string", "Object must be a string"},
        {R"("data":{"text":["x"]})", "Object must be a string", "Object must be a string"},
        {R"("data":{"text":"plain secret"})", nullptr, "C API function returned -1, errno=22"},
        {R"("data":{"text":"$ob2$AAAAAA"})", nullptr, "C API function returned -1, errno=95"},
        {R"("data":{"text":"$ob1$AAAAAQ"})", nullptr, "C API function returned -1, errno=74"},
    };
    for (const auto& [data, there, back] : cases) {
        for (const auto& [path, cause] :
             {std::pair{"utils.text.obfuscate", there}, std::pair{"utils.text.deobfuscate", back}}) {
            take_log();
            const auto answered = send(path, data, "call");
            EXPECT_EQ(answered == failed(path), cause != nullptr) << path << data;
            const auto log = take_log();
            EXPECT_THAT(log, Not(Contains(HasSubstr("plain secret"))));
            if (cause != nullptr) {
                EXPECT_THAT(log, Contains(EndsWith(fmt::format("Message: {}.", cause)))) << path << data;
            }
        }
    }
    const auto too_long = "\"" + std::string(1025, 'x') + "\"";
    EXPECT_EQ(convert("utils.text.obfuscate", too_long), failed("utils.text.obfuscate"));
    EXPECT_THAT(take_log(), Not(Contains(HasSubstr("xxxx"))));
}

} // namespace
} // namespace xpon::test
