#include "tests/unit/platform/ipc/peer_thread.hpp"

#include <atomic>
#include <cerrno>
#include <map>
#include <optional>
#include <string_view>
#include <vector>

namespace xpon::ipc {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

constexpr Address first{0x06fffe};
constexpr Address second{0x07fffe};
constexpr Address third{0x08fffe};

/// An endpoint of peers that are all served by one process.
class PeerGroupTest : public IpcTest {
protected:
    PeerGroupTest() {
        for (const auto address : {first, second, third}) {
            EXPECT_TRUE(endpoint->connect(address));
        }
    }

    std::optional<Address> ask_all(std::string_view text, std::chrono::milliseconds deadline) const {
        return endpoint->raw()->ask_all(echo, bytes_of(text), deadline);
    }

    std::map<Address, ServerAnswer> answers{{first, {}}, {second, {}}, {third, {}}};
    std::atomic<int> lost_answers = 0; ///< with `first`, which ends after so many questions
    PeerThread server{{first, second, third}, [this](const ServerRequest& request) {
                          if (lost_answers == 0) {
                              return answers.at(request.peer);
                          }
                          if (--lost_answers == 0) {
                              server.end(first);
                          }
                          return ServerAnswer{0, {}, 1h};
                      }};
};

TEST_F(PeerGroupTest, EachIsAskedAndToldOnceAndTheFirstThatRefusesIsNamed) {
    struct Case {
        std::map<Address, ServerAnswer> answers;
        std::optional<Address> refusing;
    };
    const ServerAnswer yes;
    const ServerAnswer no{EPERM, {}, {}};
    const ServerAnswer late_no{EPERM, {}, 1h};
    const ServerAnswer soon_no{EPERM, {}, 5ms};
    const ServerAnswer fault{EIO, {}, {}};
    for (const auto& [given, refusing] : {
             Case{{{first, yes}, {second, yes}, {third, yes}}, {}},
             Case{{{first, yes}, {second, no}, {third, no}}, second},
             Case{{{first, fault}, {second, soon_no}, {third, no}}, second},
         }) {
        answers = given;
        const auto asked_before = server.requests().size();
        EXPECT_EQ(ask_all("all", 10s), refusing);
        EXPECT_EQ(server.requests().size() - asked_before, 3U);
    }
    endpoint->raw()->notify_all(echo, bytes_of("news"));
    EXPECT_TRUE(eventually([&] { return server.notices().size() == 3; }));
    EXPECT_THAT(server.notices(), ElementsAre("news", "news", "news"));
    // A peer that is silent is passed over, and nobody waits for it again.
    answers = {{first, late_no}, {second, yes}, {third, no}};
    EXPECT_EQ(ask_all("all", 30ms), third);
    EXPECT_EQ(endpoint->raw()->request(second, echo, {}, 10s).status, 0) << "it has answered";
}

TEST_F(PeerGroupTest, WhoWasToAnswerOverAConnectionThatBrokeIsAskedAgain) {
    answers[third].status = EPERM;
    lost_answers = 3;
    EXPECT_EQ(ask_all("all", 10s), third);
    EXPECT_EQ(server.requests().size(), 5U) << "three, and the two that are left";
    EXPECT_EQ(ask_all("again", 10s), third);
    EXPECT_EQ(server.requests().size(), 7U);
}

TEST_F(PeerGroupTest, WhoMovedToAnotherProcessIsAskedThere) {
    server.end(second);
    EXPECT_TRUE(eventually([&] { return endpoint->raw()->request(second, echo, {}, 10s).status == ECONNREFUSED; }));
    const PeerThread other(second, [](const ServerRequest&) { return ServerAnswer{EPERM, {}, {}}; });
    EXPECT_TRUE(eventually([&] { return endpoint->raw()->request(second, echo, {}, 10s).status == EPERM; }));
    EXPECT_EQ(ask_all("all", 10s), second);
}

} // namespace
} // namespace xpon::ipc
