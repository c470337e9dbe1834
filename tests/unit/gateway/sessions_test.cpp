#include "gateway/sessions/sessions.hpp"

#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::gateway {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::Pair;

class SessionsTest : public testing::Test {
protected:
    ApiSession api(const std::string& user, std::uint64_t incarnation = 1) {
        return {.id = std::to_string(++last_id), .incarnation = incarnation, .user = user, .privilege = "viewer"};
    }

    Settings settings{.idle_timeout = 900s, .absolute_timeout = 3600s, .sessions_per_user = 2, .sessions = 3};
    std::vector<std::pair<std::string, SessionEnd>> ended; // id of the API, in order
    Sessions sessions{settings,
                      [this](const auto& session, SessionEnd why) { ended.emplace_back(session->api.id, why); }};
    Clock::time_point begin = Clock::now();
    int last_id = 0;
};

TEST_F(SessionsTest, IdsAreLongRandomAndFitForACookie) {
    std::set<std::string> ids;
    for (int i = 0; i < 1000; ++i) {
        const auto id = sessions.open(api("user" + std::to_string(i % 2)), begin)->id;
        EXPECT_EQ(id.size(), 43U);
        EXPECT_EQ(id.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_"),
                  std::string::npos);
        ids.insert(id);
    }
    EXPECT_EQ(ids.size(), 1000U);
}

TEST_F(SessionsTest, EndWithoutActionsAndInAnyCaseAtLast) {
    const auto idle = sessions.open(api("idle"), begin);
    const auto busy = sessions.open(api("busy"), begin);
    for (auto now = begin; now < begin + 3600s; now += 600s) {
        ASSERT_EQ(sessions.find(busy->id, now), busy);
        Sessions::touch(*busy, now);
    }
    EXPECT_EQ(sessions.time_left(*idle, begin + 300500ms), (TimeLeft{.idle = 600s, .absolute = 3300s}));
    // Whoever comes too late does not get it, even when nobody has looked in between.
    EXPECT_NE(sessions.find(idle->id, begin + 899s), nullptr);
    EXPECT_EQ(sessions.find(idle->id, begin + 900s), nullptr);
    sessions.end_overdue(begin + 3599s);
    EXPECT_NE(sessions.find(busy->id, begin + 3599s), nullptr);
    sessions.end_overdue(begin + 3600s);
    EXPECT_THAT(ended, ElementsAre(Pair("1", SessionEnd::idle), Pair("2", SessionEnd::absolute)));
    EXPECT_EQ(sessions.why_ended(idle->id), SessionEnd::idle);
    EXPECT_EQ(sessions.why_ended("no such id"), std::nullopt);
    sessions.end(idle, SessionEnd::logged_out);
    EXPECT_EQ(ended.size(), 2U) << "ends once";
}

TEST_F(SessionsTest, OneTooManyOfAUserEndsTheLeastRecentlyUsedOfThatUser) {
    const auto first = sessions.open(api("admin"), begin);
    const auto second = sessions.open(api("admin"), begin + 1s);
    const auto other = sessions.open(api("viewer"), begin);
    Sessions::touch(*first, begin + 2s);
    EXPECT_FALSE(sessions.has_room_for("operator"));
    ASSERT_TRUE(sessions.has_room_for("admin"));
    const auto third = sessions.open(api("admin"), begin + 3s);
    EXPECT_THAT(ended, ElementsAre(Pair(second->api.id, SessionEnd::displaced)));
    // All places are taken, so that only one of the user's own can make room.
    ASSERT_TRUE(sessions.has_room_for("viewer"));
    sessions.open(api("viewer"), begin + 4s);
    EXPECT_EQ(sessions.find(other->id, begin + 4s), nullptr);
    EXPECT_EQ(sessions.size(), 3U);
}

TEST_F(SessionsTest, OfAnEarlierDaemonEndWhenAnotherOneIsThere) {
    const auto before = sessions.open(api("admin", 1), begin);
    const auto after = sessions.open(api("admin", 2), begin);
    sessions.end_those_before(2);
    EXPECT_THAT(ended, ElementsAre(Pair(before->api.id, SessionEnd::service_restarted)));
    EXPECT_TRUE(before->has_ended);
    EXPECT_NE(sessions.find(after->id, begin), nullptr);
}

} // namespace
} // namespace xpon::gateway
