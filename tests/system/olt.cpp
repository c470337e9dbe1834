#include "tests/system/olt.hpp"

#include "tests/support/eventually.hpp"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <utility>

#include <gtest/gtest.h>

namespace xpon::test {
namespace {

// A leak found at the end of a process fails the test that looks at its exit status.
const Environment::value_type reports_leaks{"ASAN_OPTIONS", "detect_leaks=1:exitcode=99"};

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
    Process prepare({XPON_SOURCE_DIR "/scripts/prepare-root", path_, BINARY_FOLDER}, {});
    if (prepare.wait() != 0) {
        throw std::runtime_error(prepare.output());
    }
}

OltFolder::~OltFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

Olt::Olt() {
    notify_ = std::make_unique<NotifySocket>(root() / "run/notify");
}

void Olt::start_simulator(const std::vector<std::string>& options) {
    std::vector<std::string> command{OLT_SIMULATOR};
    command.insert(command.end(), options.begin(), options.end());
    simulator_ = std::make_unique<Process>(command, Environment{{"OLT_ROOT", root()}, reports_leaks});
    ASSERT_TRUE(simulator_->wait_for_line("olt_simulator is ready")) << simulator_->output();
}

void Olt::start_daemon(const std::string& program) {
    Environment settings{reports_leaks};
    std::ifstream file(root() / "etc/api_service.env");
    for (std::string line; std::getline(file, line);) {
        const auto equals = line.find('=');
        settings.emplace_back(line.substr(0, equals), line.substr(equals + 1));
        if (WITH_SANITIZERS && settings.back().first == "LD_PRELOAD") {
            // The runtime must be the first. It hands on calls of libcrypt, which PAM's modules bring in late, only
            // when that is there from the start.
            settings.back().second.insert(0, SANITIZER_RUNTIME ":libcrypt.so.1:");
        }
    }
    if (WITH_SANITIZERS) {
        settings.emplace_back("PAM_WRAPPER_DISABLE_DEEPBIND", "1");
    }
    daemon_ = std::make_unique<Process>(std::vector<std::string>{program}, settings);
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

std::string read_file(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
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
