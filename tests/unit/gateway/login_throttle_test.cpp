#include "gateway/sessions/login_throttle.hpp"

#include <string>

#include <gtest/gtest.h>

namespace xpon::gateway {
namespace {

using namespace std::chrono_literals;
using Outcome = LoginThrottle::Outcome;

class LoginThrottleTest : public testing::Test {
protected:
    /// How long the attempt has to wait; one that does not ends with `outcome`.
    std::chrono::seconds attempt(const std::string& address, const std::string& user, Outcome outcome) {
        const auto wait = throttle.begin(address, user, now);
        if (wait == 0s) {
            throttle.end(address, user, outcome, now);
        }
        return wait;
    }

    LoginThrottle throttle;
    LoginThrottle::Clock::time_point now = LoginThrottle::Clock::now();
};

TEST_F(LoginThrottleTest, GuessingWaitsTwiceAsLongEachTime) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(attempt("192.0.2.1", "admin", Outcome::refused), 0s);
    }
    for (const auto wait : {1s, 2s, 4s, 8s, 16s, 32s, 64s, 128s, 256s, 300s, 300s}) {
        EXPECT_EQ(attempt("192.0.2.1", "admin", Outcome::refused), wait);
        now += wait - 1s;
        EXPECT_EQ(attempt("192.0.2.1", "admin", Outcome::granted), 1s) << "also with the right password";
        now += 1s;
        EXPECT_EQ(attempt("192.0.2.1", "admin", Outcome::refused), 0s);
    }
    // Neither the same user elsewhere nor another user here is held up by that.
    EXPECT_EQ(attempt("192.0.2.2", "admin", Outcome::granted), 0s);
}

TEST_F(LoginThrottleTest, SuccessTakesMistakesBack) {
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(attempt("192.0.2.1", "clumsy", i % 3 == 2 ? Outcome::granted : Outcome::refused), 0s) << i;
        now += 60s;
    }
}

TEST_F(LoginThrottleTest, TryingManyUsersSlowsTheAddressAndItsNetwork) {
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(attempt("2001:db8:0:1::1", "user" + std::to_string(i), Outcome::refused), 0s);
    }
    EXPECT_GT(attempt("2001:db8:0:1::2", "admin", Outcome::refused), 0s) << "the same network";
    EXPECT_EQ(attempt("2001:db8:0:2::1", "admin", Outcome::granted), 0s);
    EXPECT_EQ(attempt("192.0.2.1", "admin", Outcome::granted), 0s);
}

TEST_F(LoginThrottleTest, AttackFromManyAddressesDoesNotShutTheOwnerOut) {
    EXPECT_EQ(attempt("192.0.2.200", "admin", Outcome::granted), 0s);
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(attempt("198.51.100." + std::to_string(i), "admin", Outcome::refused), 0s);
    }
    EXPECT_GT(attempt("198.51.100.99", "admin", Outcome::refused), 0s);
    EXPECT_EQ(attempt("192.0.2.200", "admin", Outcome::granted), 0s);
}

TEST_F(LoginThrottleTest, OneAttemptAtATimeAndAServiceThatIsDownCostsNothing) {
    EXPECT_EQ(throttle.begin("192.0.2.1", "admin", now), 0s);
    EXPECT_EQ(throttle.begin("192.0.2.1", "admin", now), 1s);
    throttle.end("192.0.2.1", "admin", Outcome::unknown, now);
    for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(attempt("192.0.2.1", "admin", Outcome::unknown), 0s);
    }
}

} // namespace
} // namespace xpon::gateway
