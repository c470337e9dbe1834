#include "tests/support/eventually.hpp"
#include "tests/system/olt.hpp"

#include <chrono>
#include <csignal>
#include <string>
#include <vector>

#include <sys/prctl.h>
#include <sys/socket.h>

#include <gtest/gtest.h>
#include <linux/capability.h>
#include <poll.h>

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
        int sent = 0;
        const auto while_there_is_room = [] {
            return std::chrono::steady_clock::now() + std::chrono::milliseconds(200);
        };
        while (sent < 200 && deaf.connection().send_frame(request, while_there_is_room())) {
            ++sent;
            expect_served(polite);
        }
        EXPECT_LT(sent, 200) << "requests of a client that takes no answers must be left in its own buffers";
        for (int received = 0; received < 3; ++received) { // and are served once it takes them
            const auto answer = deaf.connection().receive_frame(soon());
            ASSERT_TRUE(answer) << answer.error().to_string();
            EXPECT_GT(answer.value().size(), 256U * 1024U);
        }
    }
    expect_served(polite);
    // That the deaf client is gone may show no sooner than when the kernel tries again to send to it.
    EXPECT_TRUE(eventually([&] { return olt.daemon().descriptors() <= descriptors + 1; }))
        << olt.daemon().descriptors();
    olt.daemon().send_signal(SIGTERM);
    EXPECT_EQ(olt.daemon().wait(), 0) << olt.daemon().output();
}

TEST(UnrulyClients, GetNoMemoryForGood) {
    if (WITH_SANITIZERS) {
        GTEST_SKIP() << "whose allocator keeps freed memory for a while";
    }
    Olt olt;
    olt.start();
    auto client = Olt::connect();
    expect_served(client);
    const auto idle = olt.daemon().resident_kib();
    const auto is_idle_again = [&] { return olt.daemon().resident_kib() < idle + 4096; };
    std::string numbers = R"({"path":"no.such.path","method":"get","data":[0)";
    while (numbers.size() < 4U * 1024U * 1024U) {
        numbers += ",1";
    }
    EXPECT_TRUE(ask(client, numbers + "]}").starts_with(R"({"success":false)"));
    EXPECT_TRUE(eventually(is_idle_again)) << olt.daemon().resident_kib() << " KiB, before: " << idle;
    {
        auto half_a_request = Olt::connect();
        ASSERT_TRUE(half_a_request.connection().send_bytes(numbers, soon()));
    }
    expect_served(client);
    EXPECT_TRUE(eventually(is_idle_again)) << olt.daemon().resident_kib() << " KiB, before: " << idle;
}

/// Everything that comes until the other end closes the connection.
std::string receive_all(const client::Connection& connection) {
    std::string all;
    std::vector<char> buffer(1U << 20U);
    pollfd entry{.fd = connection.descriptor(), .events = POLLIN, .revents = 0};
    while (poll(&entry, 1, 20'000) > 0) {
        const auto count = recv(entry.fd, buffer.data(), buffer.size(), 0);
        if (count <= 0) {
            return all;
        }
        all.append(buffer.data(), static_cast<std::size_t>(count));
    }
    ADD_FAILURE() << "the connection stays open";
    return all;
}

// Without the right to force the size of a send buffer, as a user's daemon is.
TEST(UnrulyClients, GetNothingBehindACutAnswer) {
    Olt olt;
    ASSERT_EQ(prctl(PR_CAPBSET_DROP, CAP_NET_ADMIN), 0); // for the programs that are started from here on
    olt.start();
    const auto log = [&] { return read_file(olt.root() / "var/log/api-service.log"); };
    if (log().find("Answers of more than ") == std::string::npos) {
        GTEST_SKIP() << "net.core.wmem_max lets every answer through";
    }
    const std::string text(32U << 20U, 'x');
    auto slow = Olt::connect();
    ASSERT_TRUE(slow.connection().send_frame(R"({"path":"test.echo","method":"echo","data":")" + text + "\"}",
                                             std::chrono::steady_clock::now() + std::chrono::minutes(1)));
    const std::string line = "Answer of test.echo: ";
    ASSERT_TRUE(eventually([&] { return log().find(line) != std::string::npos; }, std::chrono::minutes(1)));
    const auto received = receive_all(slow.connection());
    const auto whole = "{\n\t\"success\":\ttrue,\n\t\"session_id\":\t\"\",\n\t\"data\":\t\"" + text + "\"\n}";
    EXPECT_FALSE(received.empty());
    EXPECT_LT(received.size(), whole.size());
    EXPECT_TRUE(whole.starts_with(received)) << "something else stands behind the cut answer";
    EXPECT_EQ(log().find(line, log().find(line) + 1), std::string::npos) << "told once";
    EXPECT_NE(log().find(" of 335544"), std::string::npos) << "with the bytes wanted";
    auto polite = Olt::connect();
    expect_served(polite);
}

} // namespace
} // namespace xpon::test
