#include "ipc/message.hpp"
#include "ipc/zmq_socket.hpp"
#include "tests/unit/platform/ipc/peer_thread.hpp"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>

namespace xpon::ipc {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

using Bytes = std::vector<std::byte>;
using Messages = std::vector<Bytes>;

/// `message` with one member of its header changed.
template <class T>
Bytes with(Bytes message, std::size_t offset, T value) {
    std::memcpy(message.data() + offset, &value, sizeof value);
    return message;
}

/// What no well-meaning side would send in place of `good`.
Messages hostile_forms_of(const Bytes& good) {
    Messages forms;
    for (std::size_t size = 0; size < good.size(); ++size) {
        forms.emplace_back(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size));
    }
    forms.push_back(with(good, offsetof(MessageHeader, magic), 0U));
    forms.push_back(with(good, offsetof(MessageHeader, kind), std::uint16_t{9}));
    forms.push_back(with(good, offsetof(MessageHeader, others), std::uint16_t{3})); // more than there are bytes
    for (const std::uint64_t size : {0ULL, 1ULL, 0x7fffffffULL, ~0ULL, 0 - 1ULL * sizeof(MessageHeader)}) {
        forms.push_back(with(good, offsetof(MessageHeader, payload_size), size));
    }
    return forms;
}

std::string endpoint_name(const test::TemporaryOltRoot& root) {
    return "ipc://" + root.path().string() + "/run/ipc/0019fffe";
}

TEST_F(IpcTest, HostileMessagesToAServerAreDropped) {
    const PeerThread server;
    ASSERT_TRUE(endpoint->connect(peer));
    zmq::context_t context;
    auto client = make_socket(context, zmq::socket_type::dealer);
    client.connect(endpoint_name(root));
    zmq::message_t answer;
    const auto next_header = [&] {
        std::ignore = client.recv(answer);
        return decode({answer.data<std::byte>(), answer.size()}).value().header;
    };

    const auto good = encode({.operation = echo, .sender = own, .id = 7}, bytes_of("payload"));
    for (const auto& form : hostile_forms_of(good)) {
        ASSERT_TRUE(client.send(zmq::buffer(form)));
    }
    client.send(zmq::buffer(good), zmq::send_flags::sndmore);
    client.send(zmq::buffer(good));
    client.send(zmq::buffer(good));
    EXPECT_EQ(next_header().id, 7U);
    // A client of another version learns the server's.
    client.send(zmq::buffer(encode({.version = 9, .operation = hello, .id = 8}, {})));
    const auto refusal = next_header();
    EXPECT_EQ(refusal.id, 8U);
    EXPECT_EQ(refusal.version, protocol_version);
    EXPECT_EQ(refusal.status, EPROTONOSUPPORT);
    EXPECT_EQ(ask("others are served").status, 0);
    EXPECT_THAT(server.requests(), testing::ElementsAre("payload", "others are served"));
}

/// A peer whose every answer is what the test makes of the request.
class ScriptedPeer {
public:
    using Script = std::function<Messages(const Message&)>;

    ScriptedPeer(const test::TemporaryOltRoot& root, Script script)
        : socket_(make_socket(context_, zmq::socket_type::router)) {
        root.write("run/ipc/.keep", "");
        socket_.set(zmq::sockopt::sndhwm, 0); // it sends whatever it likes
        socket_.bind(endpoint_name(root));
        thread_ = std::jthread([this, script](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                while (answer(script)) {
                }
                std::array items{news_of(socket_)};
                wait_for(items, 2ms);
            }
        });
    }

private:
    bool answer(const Script& script) {
        zmq::message_t client;
        zmq::message_t request;
        if (!receive(socket_, client)) {
            return false;
        }
        std::ignore = socket_.recv(request);
        for (const auto& bytes : script(decode({request.data<std::byte>(), request.size()}).value())) {
            zmq::message_t name;
            name.copy(client);
            socket_.send(name, zmq::send_flags::sndmore);
            socket_.send(zmq::buffer(bytes));
        }
        return true;
    }

    zmq::context_t context_;
    zmq::socket_t socket_;
    std::jthread thread_;
};

Bytes answer_to(const Message& request, std::string_view text) {
    auto header = request.header;
    header.kind = MessageKind::answer;
    return encode(header, bytes_of(text));
}

TEST_F(IpcTest, HostileAnswersAreDroppedAndTheRightOneIsTaken) {
    const ScriptedPeer server(root, [](const Message& request) {
        const auto good = answer_to(request, "the answer");
        auto answers = hostile_forms_of(good);
        answers.push_back(with(good, offsetof(MessageHeader, id), request.header.id + 1));
        answers.push_back(with(good, offsetof(MessageHeader, kind), MessageKind::request));
        answers.push_back(good);
        return answers;
    });
    ASSERT_TRUE(endpoint->connect(peer));
    EXPECT_EQ(text_of(ask("a").payload), "the answer");
}

TEST_F(IpcTest, APeerThatTalksNonsenseWithoutEndTimesOut) {
    bool is_hello = true;
    const ScriptedPeer server(root, [&is_hello](const Message& request) {
        return std::exchange(is_hello, false) ? Messages{answer_to(request, "")} : Messages(5000, Bytes(40));
    });
    ASSERT_TRUE(endpoint->connect(peer));
    EXPECT_EQ(ask("a", 20ms).status, ETIMEDOUT);
}

TEST_F(IpcTest, APeerOfAnotherVersionIsRefusedByName) {
    const ScriptedPeer server(root, [](const Message& request) {
        return Messages{with(answer_to(request, ""), offsetof(MessageHeader, version),
                             static_cast<std::uint16_t>(protocol_version + 1))};
    });
    const auto result = endpoint->connect(peer);
    ASSERT_FALSE(result);
    EXPECT_THAT(result.error().to_string(),
                HasSubstr("Peer 0x0019fffe: it speaks version 5 of the protocol, this side version 4"));
}

} // namespace
} // namespace xpon::ipc
