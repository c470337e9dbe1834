#include "tests/support/eventually.hpp"
#include "tests/system/olt.hpp"

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <sys/socket.h>

#include <gtest/gtest.h>

namespace xpon::test {
namespace {

using client::Client;

const std::string generic_refusal =
    R"({"success":false,"session_id":"","errors":[{"message":{"key":"Request could not be processed","params":{}},)"
    R"("path":"api_service"}]})";

client::Deadline soon() {
    return std::chrono::steady_clock::now() + std::chrono::seconds(10);
}

/// A daemon with a client that behaves, which must be served at any time.
class UnrulyClients : public testing::Test {
protected:
    void SetUp() override {
        olt_.start();
        polite_.emplace(Olt::connect());
        expect_served();
        descriptors_ = olt_.daemon().descriptors();
    }

    void TearDown() override {
        expect_served();
        EXPECT_TRUE(eventually([&] { return olt_.daemon().descriptors() == descriptors_; }))
            << olt_.daemon().descriptors() << " descriptors are open, " << descriptors_ << " were";
        olt_.daemon().send_signal(SIGTERM);
        EXPECT_EQ(olt_.daemon().wait(), 0) << olt_.daemon().output();
    }

    void expect_served() {
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(ask(*polite_, R"({"path":"test.echo","method":"echo","data":["hello",1]})"),
                  R"({"success":true,"session_id":"","data":["hello",1]})");
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
    }

    Olt olt_;
    std::optional<Client> polite_;
    std::size_t descriptors_ = 0;
};

TEST_F(UnrulyClients, SendNonsense) {
    const std::vector<std::string> frames{
        "garbage",
        "{",
        "[]",
        "null",
        "\"text\"",
        "\xff\xfe\x01",
        R"({"path":"test.echo"})",
        R"({"method":"echo"})",
        R"({"path":1,"method":"echo"})",
        R"({"path":"no.such.path","method":"get"})",
        R"({"path":"test.echo","method":"get"})",
        R"({"path":"test.echo","method":"echo","indices":[1]})",
        R"({"path":"test.echo","method":"echo","config_type":"Running"})",
        std::string(200'000, '['),
        R"({"path":"test.echo","method":"echo","data":)" + std::string(100'000, '[') + std::string(100'000, ']') + "}",
    };
    auto client = Olt::connect();
    for (const auto& frame : frames) {
        EXPECT_EQ(ask(client, frame), generic_refusal) << frame.substr(0, 80);
        expect_served();
    }
}

TEST_F(UnrulyClients, VanishAtAnyPoint) {
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
}

TEST_F(UnrulyClients, SendMegabytesWithoutEnd) {
    auto endless = Olt::connect();
    const std::string chunk(256 * 1024, 'x');
    for (int sent = 0; sent < 32; ++sent) { // 8 MiB
        ASSERT_TRUE(endless.connection().send_bytes(chunk, soon()));
        expect_served();
    }
    // However long it was, once it ends it is a frame like any other.
    EXPECT_EQ(ask(endless, "x"), generic_refusal);
}

TEST_F(UnrulyClients, NeverReadTheirAnswers) {
    auto deaf = Olt::connect();
    const std::string request =
        R"({"path":"test.echo","method":"echo","data":")" + std::string(256 * 1024, 'x') + R"("})";
    for (int sent = 0; sent < 100; ++sent) { // 25 MiB of answers that nobody takes
        ASSERT_TRUE(deaf.connection().send_frame(request, soon()));
        expect_served();
    }
}

TEST_F(UnrulyClients, ComeInCrowds) {
    std::vector<Client> crowd;
    for (int i = 0; i < 300; ++i) {
        crowd.push_back(Olt::connect());
        ASSERT_TRUE(crowd.back().connection().send_bytes("{\"path\":", soon()));
    }
    expect_served();
}

} // namespace
} // namespace xpon::test
