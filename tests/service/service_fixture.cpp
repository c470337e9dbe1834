#include "tests/service/service_fixture.hpp"

#include "xpon/core/json_tree.hpp"

#include <chrono>

#include <fmt/format.h>
#include <poll.h>

namespace xpon::test {
namespace {

client::Deadline soon() {
    return std::chrono::steady_clock::now() + std::chrono::seconds(20);
}

/// The listener is there once `run` has got so far.
client::Connection connect_to(const std::string& path) {
    const auto deadline = soon();
    for (;;) {
        auto connection = client::Connection::open(client::UnixEndpoint{path});
        if (connection || std::chrono::steady_clock::now() > deadline) {
            return std::move(connection).value();
        }
        ::poll(nullptr, 0, 1);
    }
}

} // namespace

ServiceTest::ServiceTest()
    : service(peers, logger, api_service::UnixEndpoint{root.path().string() + "/api"}, pam),
      thread([this] { EXPECT_TRUE(service.run({})); }), connection(connect_to(root.path().string() + "/api")) {}

ServiceTest::~ServiceTest() {
    EXPECT_TRUE(service.stop({}));
    // Wakes the loop, which then sees that it is to end; it may have ended already.
    const auto last = client::Connection::open(client::UnixEndpoint{root.path().string() + "/api"});
    thread.join();
}

std::string ServiceTest::exchange(const std::string& frame) {
    auto answer = exchange_or_close(frame);
    EXPECT_TRUE(answer) << "no answer to " << frame;
    return std::move(answer).value_or("");
}

std::optional<std::string> ServiceTest::exchange_or_close(const std::string& frame) {
    const auto sent = connection.send_frame(frame, soon());
    auto answer = connection.receive_frame(soon());
    if (sent && answer) {
        return std::move(answer).value();
    }
    connection = connect_to(root.path().string() + "/api");
    return std::nullopt;
}

std::string ServiceTest::ask(const std::string& frame) {
    const core::JsonTree tree(cJSON_Parse(exchange(frame).c_str()));
    return core::JsonText(cJSON_PrintUnformatted(tree.get())).get();
}

std::string ServiceTest::log_in(const std::string& user) {
    const auto answer =
        ask(fmt::format(R"({{"path":"auth","method":"auth","data":{{"user":"{0}","password":"{0}"}}}})", user));
    const core::JsonTree tree(cJSON_Parse(answer.c_str()));
    const char* id = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(tree.get(), "session_id"));
    return id == nullptr ? "" : id;
}

std::vector<std::string> ServiceTest::take_log() {
    auto texts = logger->texts();
    logger->clear();
    return texts;
}

std::size_t occurrences(const std::string& whole, const std::string& text) {
    std::size_t found = 0;
    for (auto at = whole.find(text); at != std::string::npos; at = whole.find(text, at + 1)) {
        ++found;
    }
    return found;
}

std::string access_denied(const std::string& id) {
    return fmt::format(R"({{"success":false,"session_id":"{}","errors":[{{"message":{{"key":"Access denied",)"
                       R"("params":{{}}}},"path":"api_service"}}]}})",
                       id);
}

std::string not_processed(const std::string& path, const std::string& id) {
    return fmt::format(R"({{"success":false,"session_id":"{}","errors":[{{"message":)"
                       R"({{"key":"Request could not be processed","params":{{}}}},"path":"{}"}}]}})",
                       id, path);
}

} // namespace xpon::test
