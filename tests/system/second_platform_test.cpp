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
    const std::pair<const char*, const char*> exchanges[] = {
        {R"({"path":"configuration.CommonGCfg.hostname","method":"set","config_type":"candidate","data":{"first_byte":"x"}})",
         R"("errors":[{"message":{"key":"text 22","params":{}},"path":"first_byte"}])"},
        {R"({"path":"configuration.CommonGCfg.hostname","method":"set","config_type":"candidate","data":{"first_byte":7}})",
         R"("success":true)"},
        {R"({"path":"configuration.CommonGCfg.hostname","method":"get","config_type":"running"})",
         R"("data":{"first_byte":0})"},
        {R"({"path":"command.commit","method":"command"})", R"("success":true)"},
        {R"({"path":"monitoring.interface.front_port.state","method":"get","indices":["1"]})",
         R"("media":"10GBASE-LR")"},
        {R"({"path":"monitoring.mac","method":"get"})", R"("gem":640)"},
        {R"({"path":"utils.text.obfuscate","method":"call","data":{"text":"a"}})", R"("success":false)"},
    };
    for (const auto& [request, answer] : exchanges) {
        EXPECT_THAT(ask_in_session(client, request), HasSubstr(answer)) << request;
    }
    olt.daemon().send_signal(SIGTERM);
    EXPECT_EQ(olt.daemon().wait(), 0) << olt.daemon().output();
}

} // namespace
} // namespace xpon::test
