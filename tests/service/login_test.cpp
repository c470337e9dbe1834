#include "tests/service/service_fixture.hpp"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using testing::Contains;

class Login : public ServiceTest {
protected:
    std::string auth(const std::string& data) {
        return ask(R"({"path":"auth","method":"auth","data":)" + data + "}");
    }

    static std::string refusal(const std::string& reason) {
        return fmt::format(R"({{"success":false,"session_id":"","errors":[{{"message":{{"key":"Access denied",)"
                           R"("params":{{"p0":"{}"}}}},"path":"auth"}}]}})",
                           reason);
    }
};

TEST_F(Login, GivesASessionWithTheUsersPrivilege) {
    EXPECT_EQ(auth(R"({"user":"admin","password":"admin"})"),
              R"({"success":true,"session_id":"1","data":{"session_id":"1","web_privilege":"administrator"}})");
    EXPECT_EQ(ask(R"({"session_id":"1","path":"unauth","method":"auth"})"), R"({"success":true,"session_id":"1"})");
    EXPECT_EQ(ask(R"({"session_id":"1","path":"unauth","method":"auth"})"), access_denied("")) << "a second time";
    EXPECT_EQ(log_in("operator"), "2");
    EXPECT_EQ(ask(R"({"session_id":"2","path":"auth","method":"auth","data":{"user":"viewer","password":"viewer"}})"),
              R"({"success":true,"session_id":"3","data":{"session_id":"3","web_privilege":"viewer"}})")
        << "inside a session another one is opened";
    EXPECT_EQ(pam->sessions_open, 2) << "a PAM session lives as long as its session";
}

TEST_F(Login, RefusesAndLeavesNoSessionBehind) {
    EXPECT_EQ(auth(R"({"user":"admin","password":"wrong"})"), refusal("InvalidCredentials"));
    EXPECT_THAT(take_log(), Contains("Invalid credentials"));

    EXPECT_EQ(auth(R"({"user":"guest","password":"guest"})"), refusal("PrivilegeNotSet"));
    EXPECT_THAT(take_log(), Contains("Web privilege not set"));

    EXPECT_EQ(auth(R"({"user":"stranger","password":"stranger"})"), not_processed("auth"));
    EXPECT_THAT(take_log(), Contains("Unable to create session: Error: Empty. Message: User not found."));

    pam->unavailable_for = "admin";
    EXPECT_EQ(auth(R"({"user":"admin","password":"admin"})"), not_processed("auth"));
    EXPECT_THAT(take_log(), Contains("An std::exception was thrown: PAM is away"));

    EXPECT_EQ(pam->sessions_open, 0);
    const auto id = log_in("viewer");
    EXPECT_EQ(ask(R"({"path":"auth","method":"auth","session_id":")" + id +
                  R"(","data":{"user":"operator","password":"wrong"}})"),
              refusal("InvalidCredentials"))
        << "also inside a session";
    EXPECT_EQ(ask(R"({"session_id":"1","path":"test.echo","method":"echo"})"), access_denied(""));
}

TEST_F(Login, UnusableDataOpensNoPamSession) {
    const std::string unparsable = R"({"success":false,"session_id":"","errors":[{"message":)"
                                   R"({"key":"Index or request data cannot be parsed","params":{}},"path":"auth"}]})";
    for (const char* data : {R"({"user":"admin","password":1})", R"({"user":"admin"})",
                             R"({"User":"a","password":"a"})", "[]", "\"admin\"", "null"}) {
        EXPECT_EQ(auth(data), unparsable) << data;
    }
    EXPECT_EQ(ask(R"({"path":"auth","method":"auth"})"), unparsable);
    EXPECT_THAT(take_log(), Contains("Unable to parse payload").Times(7));
    EXPECT_EQ(pam->sessions_opened, 0);
}

} // namespace
} // namespace xpon::test
