#include "tests/support/eventually.hpp"
#include "tests/system/olt.hpp"

#include <chrono>
#include <csignal>
#include <string>

#include <sys/socket.h>

#include <gtest/gtest.h>

namespace xpon::test {
namespace {

client::Deadline soon() {
    return std::chrono::steady_clock::now() + std::chrono::seconds(10);
}

void expect_served(client::Client& polite) {
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(ask(polite, R"({"path":"test.echo","method":"echo","data":["hello",1]})"),
              R"({"success":true,"session_id":"","data":["hello",1]})");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
}

TEST(UnrulyClients, DoNotDisturbOthersAndLeaveNothingBehind) {
    Olt olt;
    olt.start();
    auto polite = Olt::connect();
    expect_served(polite);
    const auto descriptors = olt.daemon().descriptors();

    for (int round = 0; round < 100; ++round) {
        auto half_a_request = Olt::connect();
        ASSERT_TRUE(half_a_request.connection().send_bytes(R"({"path":"test.)", soon()));
        auto without_reading = Olt::connect();
        ASSERT_TRUE(without_reading.connection().send_frame(R"({"path":"test.echo","method":"echo"})", soon()));
        auto with_reset = Olt::connect();
        const linger reset{.l_onoff = 1, .l_linger = 0};
        setsockopt(with_reset.connection().descriptor(), SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
        ASSERT_TRUE(with_reset.connection().send_bytes("{}", soon()));
    }
    {
        auto deaf = Olt::connect();
        const auto request = R"({"path":"test.echo","method":"echo","data":")" + std::string(256 * 1024, 'x') + R"("})";
        for (int sent = 0; sent < 100; ++sent) { // 25 MiB of answers that nobody takes
            ASSERT_TRUE(deaf.connection().send_frame(request, soon()));
            expect_served(polite);
        }
    }
    expect_served(polite);
    EXPECT_TRUE(eventually([&] { return olt.daemon().descriptors() == descriptors; })) << olt.daemon().descriptors();
    olt.daemon().send_signal(SIGTERM);
    EXPECT_EQ(olt.daemon().wait(), 0) << olt.daemon().output();
}

} // namespace
} // namespace xpon::test
