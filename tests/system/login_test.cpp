#include "tests/system/olt.hpp"

#include <string>
#include <utility>

#include <gmock/gmock.h>

namespace xpon::test {
namespace {

TEST(Login, IsDecidedByPamAndTheMachinesGroups) {
    Olt olt;
    olt.start();
    auto client = Olt::connect();
    const std::string refused = R"({"success":false,"session_id":"","errors":[{"message":{"key":"Access denied",)"
                                R"("params":{"p0":"InvalidCredentials"}},"path":"auth"}]})";
    const std::pair<const char*, std::string> cases[] = {
        {R"({"user":"admin","password":"wrong"})", refused},
        {R"({"user":"admin","password":""})", refused},
        {R"({"user":"nobody","password":"nobody"})", refused},
        {R"({"user":"viewer","password":"viewer"})",
         R"({"success":true,"session_id":"1","data":{"session_id":"1","web_privilege":"viewer"}})"},
        {R"({"user":"operator","password":"operator"})",
         R"({"success":true,"session_id":"2","data":{"session_id":"2","web_privilege":"operator"}})"},
        {R"({"user":"admin","password":"admin"})",
         R"({"success":true,"session_id":"3","data":{"session_id":"3","web_privilege":"administrator"}})"},
    };
    for (const auto& [data, answer] : cases) {
        EXPECT_EQ(ask(client, std::string(R"({"path":"auth","method":"auth","data":)") + data + "}"), answer) << data;
    }
    EXPECT_THAT(ask(client, R"({"path":"auth","method":"auth","data":{"user":"guest","password":"guest"}})"),
                testing::HasSubstr(R"("p0":"PrivilegeNotSet")"));
}

} // namespace
} // namespace xpon::test
