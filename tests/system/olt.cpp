#include "tests/system/olt.hpp"

#include "tests/support/eventually.hpp"
#include "tests/system/isolation.hpp"

#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <utility>

#include <gtest/gtest.h>

namespace xpon::test {
namespace {

std::filesystem::path make_folder() {
    std::string path = "/tmp/olt-XXXXXX";
    if (mkdtemp(path.data()) == nullptr) {
        throw std::runtime_error("cannot make a folder below /tmp");
    }
    return path;
}

std::string without_layout(const std::string& text) {
    const client::Json tree(cJSON_Parse(text.c_str()));
    const core::JsonText printed(cJSON_PrintUnformatted(tree.get()));
    return printed ? printed.get() : "not JSON: " + text;
}

} // namespace

OltFolder::OltFolder() : path_(make_folder()) {
    Process prepare({XPON_SOURCE_DIR "/scripts/prepare-root", path_}, {});
    if (prepare.wait() != 0) {
        throw std::runtime_error(prepare.output());
    }
}

OltFolder::~OltFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

Olt::Olt() {
    isolate_this_process();
    notify_ = std::make_unique<NotifySocket>(root() / "run/notify");
}

Environment Olt::environment() const {
    return {
        {"OLT_ROOT", root()},
        {"TMPDIR", root() / "tmp"},
        // A leak found at the end of a process fails the test that looks at its exit status.
        {"ASAN_OPTIONS", "detect_leaks=1:exitcode=99"},
    };
}

void Olt::start_simulator(const std::vector<std::string>& options) {
    std::vector<std::string> command{OLT_SIMULATOR};
    command.insert(command.end(), options.begin(), options.end());
    simulator_ = std::make_unique<Process>(command, environment());
    ASSERT_TRUE(simulator_->wait_for_line("olt_simulator is ready")) << simulator_->output();
}

void Olt::start_daemon() {
    auto settings = environment();
    const bool sanitized = WITH_SANITIZERS;
    // The runtime must be the first. It hands on calls of libcrypt, which PAM's modules bring in late, only when that
    // is there from the start.
    const std::string first = sanitized ? SANITIZER_RUNTIME ":libcrypt.so.1:" : "";
    settings.insert(settings.end(), {
                                        {"LD_PRELOAD", first + "libpam_wrapper.so:" OLT_BOARD},
                                        {"PAM_WRAPPER", "1"},
                                        {"PAM_WRAPPER_SERVICE_DIR", pam_folder()},
                                        {"PAM_WRAPPER_USE_SYSLOG", "1"}, // nobody empties its standard error
                                        {"NOTIFY_SOCKET", root() / "run/notify"},
                                    });
    if (sanitized) {
        settings.emplace_back("PAM_WRAPPER_DISABLE_DEEPBIND", "1");
    }
    daemon_ = std::make_unique<Process>(std::vector<std::string>{API_SERVICE}, settings);
}

void Olt::start(const std::vector<std::string>& simulator_options) {
    start_simulator(simulator_options);
    start_daemon();
    wait_until_ready();
}

void Olt::wait_until_ready() {
    ASSERT_EQ(next_notification(), starting_up);
    ASSERT_EQ(next_notification(), ready) << daemon_->output();
    // The daemon says so just before it listens.
    ASSERT_TRUE(eventually([] { return client::Connection::open(client::TcpEndpoint{}).has_value(); }));
}

std::string Olt::next_notification() {
    return notify_->next().value_or("");
}

std::vector<std::string> Olt::notifications_until_end() {
    daemon_->wait();
    std::vector<std::string> all;
    while (auto text = notify_->next(std::chrono::milliseconds(0))) {
        all.push_back(*std::move(text));
    }
    return all;
}

client::Client Olt::connect() {
    auto client = client::Client::connect();
    if (!client) {
        throw std::runtime_error(client.error().to_string());
    }
    return std::move(client).value();
}

client::Client Olt::log_in(const std::string& user) {
    auto client = connect();
    if (!logs_in(client, user, user)) {
        throw std::runtime_error("login of " + user + " failed");
    }
    return client;
}

bool logs_in(client::Client& client, const std::string& user, const std::string& password) {
    const auto answer = client.log_in(user, password);
    EXPECT_TRUE(answer.has_value()) << answer.error().to_string();
    return answer && answer.value().success;
}

std::string ask(client::Client& client, const std::string& request) {
    const auto answer = client.exchange(request);
    return answer ? without_layout(answer.value()) : answer.error().to_string();
}

std::string ask_in_session(client::Client& client, const std::string& request_without_session) {
    return ask(client, R"({"session_id":")" + client.session_id() + R"(",)" + request_without_session.substr(1));
}

} // namespace xpon::test
