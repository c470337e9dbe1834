#include "tests/system/olt.hpp"

#include <csignal>
#include <utility>

#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using testing::HasSubstr;

TEST(SecondPlatform, TheDaemonRunsOnWhateverImplementsTheContract) {
    Olt olt;
    olt.start_daemon(API_SERVICE_ON_SECOND_PLATFORM);
    olt.wait_until_ready();
    auto client = Olt::log_in("admin");
    const char* running = R"({"path":"configuration.CommonGCfg.hostname","method":"get","config_type":"running"})";
    const std::pair<const char*, const char*> exchanges[] = {
        {R"({"path":"configuration.CommonGCfg.hostname","method":"set","config_type":"candidate","data":{"first_byte":"x"}})",
         R"("errors":[{"message":{"key":"text 22","params":{}},"path":"first_byte"}])"},
        {R"({"path":"configuration.CommonGCfg.hostname","method":"set","config_type":"candidate","data":{"first_byte":7}})",
         R"("success":true)"},
        {running, R"("data":{"first_byte":0})"},
        {R"({"path":"command.commit","method":"command"})", R"("success":true)"},
        {running, R"("data":{"first_byte":7})"},
        {R"({"path":"monitoring.interface.front_port.state","method":"get","indices":["1"]})",
         R"("media":"10GBASE-LR")"},
        {R"({"path":"monitoring.ip.igmp.snooping.groups","method":"get"})", R"("group_address":"239.0.0.7")"},
        {R"({"path":"command.reboot.ont","method":"command","indices":["1/2"]})", R"("success":true)"},
        {R"({"path":"utils.text.obfuscate","method":"call","data":{"text":"a"}})", R"("data":{"text":"~a"})"},
    };
    for (const auto& [request, answer] : exchanges) {
        EXPECT_THAT(ask_in_session(client, request), HasSubstr(answer)) << request;
    }
    olt.daemon().send_signal(SIGTERM);
    EXPECT_EQ(olt.daemon().wait(), 0) << olt.daemon().output();
}

} // namespace
} // namespace xpon::test
