#include "gateway/http/request_rules.hpp"

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace xpon::gateway {
namespace {

using Fields = std::vector<std::pair<std::string, std::string>>;

unsigned status_of(const std::optional<HttpResponse>& refusal) {
    return refusal ? refusal->status : 200;
}

TEST(ForeignRequests, AreRefused) {
    struct Case {
        Fields headers;
        bool is_secure;
        unsigned status;
    };
    Settings settings;
    const Case cases[] = {
        {{{"host", "127.0.0.1:8080"}}, false, 200},
        {{{"host", "localhost"}}, false, 200},
        {{{"host", "[::1]:8080"}}, false, 200},
        {{{"host", "olt.example.net"}}, true, 200},
        {{{"host", "attacker.example"}}, false, 421}, // a name that its owner has let point here
        {{{"host", "127.0.0.1.attacker.example"}}, false, 421},
        {{}, false, 400},
        {{{"host", "localhost"}, {"host", "attacker.example"}}, false, 400},
        {{{"host", "localhost:8080"}, {"origin", "http://localhost:8080"}}, false, 200},
        {{{"host", "localhost:8080"}, {"origin", "http://localhost:8081"}}, false, 403},
        {{{"host", "localhost:8080"}, {"origin", "https://localhost:8080"}}, false, 403},
        {{{"host", "localhost"}, {"origin", "http://localhost.attacker.example"}}, false, 403},
        {{{"host", "localhost"}, {"origin", "null"}}, false, 403},
        {{{"host", "localhost"}, {"sec-fetch-site", "same-origin"}}, false, 200},
        {{{"host", "localhost"}, {"sec-fetch-site", "none"}}, false, 200},
        {{{"host", "localhost"}, {"sec-fetch-site", "same-site"}}, false, 403},
        {{{"host", "localhost"}, {"sec-fetch-site", "cross-site"}}, false, 403},
    };
    for (const auto& [headers, is_secure, status] : cases) {
        const HttpRequest request{.headers = headers, .is_secure = is_secure};
        const auto unknown_host = refuse_unknown_host(request, settings);
        EXPECT_EQ(status_of(unknown_host ? unknown_host : refuse_foreign(request)), status)
            << testing::PrintToString(headers);
    }
    settings.host_names = {"olt.example.net"};
    EXPECT_TRUE(is_known_host("OLT.example.net:443", true, settings));
    EXPECT_FALSE(is_known_host("other.example.net", true, settings));
}

TEST(Posts, NeedTheHeaderThatFormsCannotSend) {
    const std::pair<Fields, unsigned> cases[] = {
        {{{"x-olt-console", "1"}, {"content-type", "application/json"}}, 200},
        {{{"x-olt-console", "1"}, {"content-type", "application/json; charset=utf-8"}}, 200},
        {{{"content-type", "application/json"}}, 403},
        {{{"x-olt-console", "1"}, {"content-type", "text/plain"}}, 415},
        {{{"x-olt-console", "1"}, {"content-type", "application/x-www-form-urlencoded"}}, 415},
        {{{"x-olt-console", "1"}}, 415},
    };
    for (const auto& [headers, status] : cases) {
        const HttpRequest request{.headers = headers, .body = "{}"};
        EXPECT_EQ(status_of(refuse_plain_form(request)), status);
    }
    EXPECT_FALSE(refuse_plain_form({.headers = {{"x-olt-console", "1"}}})) << "nothing to be read";
}

TEST(Cookies, AreFoundByTheirWholeName) {
    const std::pair<const char*, const char*> cases[] = {
        {"", ""},
        {"olt_console_8080=id", "id"},
        {"a=b; olt_console_8080=id; c=d", "id"},
        {"xolt_console_8080=1; olt_console_8080=id", "id"},
        {"olt_console_80801=1;olt_console_8080=id", "id"},
        {"olt_console_8080", ""},
        {"a=olt_console_8080=1", ""},
        {";;=;", ""},
    };
    for (const auto& [header, value] : cases) {
        EXPECT_EQ(cookie({.headers = {{"cookie", header}}}, cookie_name(Settings(), false)), value) << header;
    }
    EXPECT_EQ(session_cookie("n", "v", true), "n=v; Path=/api; HttpOnly; SameSite=Strict; Secure");
    EXPECT_EQ(session_cookie("n", "v", false), "n=v; Path=/api; HttpOnly; SameSite=Strict");
    EXPECT_EQ(no_session_cookie("n", false), "n=; Path=/api; HttpOnly; SameSite=Strict; Max-Age=0");
    EXPECT_TRUE(cookie_name(Settings(), true).starts_with("__Secure-"));
}

} // namespace
} // namespace xpon::gateway
