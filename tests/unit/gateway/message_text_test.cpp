#include "gateway/daemon/message_text.hpp"
#include "gateway/events/subscription.hpp"

#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace xpon::gateway {
namespace {

TEST(PageRequests, CarryTheSessionOfTheirCookieAndNoOther) {
    const std::pair<const char*, const char*> cases[] = {
        {R"({"path":"a","method":"get"})", R"({"session_id":"7","path":"a","method":"get"})"},
        {R"({"session_id":"1","path":"a","method":"get","session_id":"2"})",
         R"({"session_id":"7","path":"a","method":"get"})"},
        {R"({"session\u005fid":"1","path":"a","method":"get"} )", R"({"session_id":"7","path":"a","method":"get"})"},
        {R"({"path":"a","method":"set","indices":["1","2"],"data":{"session_id":513,"x":"\"}"}})",
         R"({"session_id":"7","path":"a","method":"set","indices":["1","2"],"data":{"session_id":513,"x":"\"}"}})"},
    };
    for (const auto& [sent, forwarded] : cases) {
        const auto request = read_request(sent);
        ASSERT_TRUE(request) << sent;
        EXPECT_EQ(print_for_session(request.value(), "7"), forwarded);
    }
}

TEST(PageRequests, ThatAreNoneAreRefused) {
    for (const std::string& text :
         {std::string(""), std::string("{"), std::string("[]"), std::string("{}"), std::string("7"),
          std::string(R"({"path":"a","method":1})"), std::string(R"({"path":"a","method":"get"} {})"),
          std::string("{\"path\":\"a\",\"method\":\"get\"}\0{\"session_id\":\"1\"}", 46),
          std::string(R"({"path":"auth","method":"auth"})"), std::string(R"({"path":"unauth","method":"auth"})"),
          std::string(R"({"path":"\u0061uth","method":"auth"})"), std::string(2'000'000, '[')}) {
        EXPECT_FALSE(read_request(text)) << text.substr(0, 80);
    }
}

TEST(Answers, LoseTheSessionTheLayoutAndNothingElse) {
    const std::pair<const char*, const char*> cases[] = {
        {"{\n\t\"success\":\ttrue,\n\t\"session_id\":\t\"1\"\n}", R"({"success":true})"},
        {R"({"session_id":"1","success":true})", R"({"success":true})"},
        {R"({"session_id":"1"})", "{}"},
        {R"({"success":true,"session_id":"1","data":[18446744073709551615, 1e2]})",
         R"({"success":true,"data":[18446744073709551615,1e2]})"},
        {R"({"data":{"session_id": 513,"a":[{"session_id":"2"}]},"session_id":"1"})",
         R"({"data":{"session_id":513,"a":[{"session_id":"2"}]}})"},
        {R"({"data":"a \"session_id\": , } \\","session_id":"\"}"})", R"({"data":"a \"session_id\": , } \\"})"},
    };
    for (const auto& [answer, printed] : cases) {
        EXPECT_EQ(print_for_page(answer), printed) << answer;
    }
    for (const auto* broken : {"", "[]", "7", "\"text\"", "{\"a\":1", "{}{}", "{\"a\":\"", "}{"}) {
        EXPECT_EQ(print_for_page(broken), std::nullopt) << broken;
    }
}

TEST(Subscriptions, AreReadFromTheQuery) {
    const Settings settings;
    const auto read = read_subscription(
        "interval=100&watch=%5B%7B%22path%22%3A%22a%22%7D%2C%7B%22path%22:%22b%22,%22interval%22:5000%7D%5D", settings);
    ASSERT_TRUE(read);
    ASSERT_EQ(read.value().size(), 2U);
    EXPECT_EQ(read.value()[0].interval, settings.shortest_interval);
    EXPECT_EQ(read.value()[1].interval, std::chrono::milliseconds(5000));
    EXPECT_EQ(print_for_session(read.value()[1].request, "1"), R"({"session_id":"1","path":"b","method":"get"})");
    EXPECT_TRUE(read_subscription("", settings).value().empty());
    std::string many;
    for (std::size_t i = 0; i <= settings.watches_per_stream; ++i) {
        many += R"({"path":"a"},)";
    }
    many.back() = ']';
    for (const std::string& query :
         {std::string("watch=%5"), std::string("watch={}"), std::string("watch=[1]"), std::string("watch=[{}]"),
          std::string("interval=x"), std::string("interval="), R"(watch=[{"path":"a","method":"set"}])" + std::string(),
          R"(watch=[{"path":"auth"}])" + std::string(), R"(watch=[{"path":"a","interval":"1"}])" + std::string(),
          "watch=[" + many}) {
        EXPECT_FALSE(read_subscription(query, settings)) << query;
    }
}

} // namespace
} // namespace xpon::gateway
