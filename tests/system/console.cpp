#include "tests/system/console.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <stdexcept>
#include <utility>

#include <sys/socket.h>

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <poll.h>

namespace xpon::test {
namespace {

using std::chrono::steady_clock;

constexpr std::string_view end_of_head = "\r\n\r\n";
constexpr auto patience = std::chrono::seconds(30);

std::vector<std::string> command_with(const std::vector<std::string>& options) {
    std::vector<std::string> command{OLT_CONSOLE, "--port", std::to_string(console_port)};
    command.insert(command.end(), options.begin(), options.end());
    return command;
}

client::Connection connect_to_console() {
    auto connection = client::Connection::open(client::TcpEndpoint{.port = console_port});
    if (!connection) {
        throw std::runtime_error(connection.error().to_string());
    }
    return std::move(connection).value();
}

/// False when nothing more comes, or not in time.
bool receive_some(const client::Connection& connection, std::string& received, steady_clock::time_point deadline) {
    pollfd entry{.fd = connection.descriptor(), .events = POLLIN, .revents = 0};
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - steady_clock::now()).count();
    std::array<char, 65536> buffer{};
    const auto count =
        left > 0 && poll(&entry, 1, static_cast<int>(left)) > 0 ? recv(entry.fd, buffer.data(), buffer.size(), 0) : 0;
    received.append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    return count > 0;
}

std::string header(const std::string& head, const std::string& name) {
    const auto begin = head.find("\r\n" + name + ": ");
    if (begin == std::string::npos) {
        return "";
    }
    const auto value = begin + name.size() + 4;
    return head.substr(value, head.find("\r\n", value) - value);
}

std::size_t number(const std::string& text) {
    std::size_t value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

int status_of(const std::string& head) {
    return head.size() > 12 ? static_cast<int>(number(head.substr(9, 3))) : 0;
}

std::string with_cookie(const std::string& cookie) {
    return cookie.empty() ? "" : "Cookie: " + cookie + "\r\n";
}

} // namespace

Console::Console(const std::vector<std::string>& options) : process_(command_with(options), {}) {
    const auto* const scheme = std::ranges::find(options, "--certificate") == options.end() ? "http" : "https";
    EXPECT_TRUE(process_.wait_for_line(fmt::format("olt_console is ready on {}://127.0.0.1:{}", scheme, console_port)))
        << process_.output();
}

std::string WebAnswer::cookie() const {
    const auto set = header(head, "Set-Cookie");
    return set.substr(0, set.find(';'));
}

void Browser::begin(const std::string& bytes) {
    if (!connection_) {
        connection_ = connect_to_console();
    }
    // A refusal may come before the end.
    is_sent_ = static_cast<bool>(connection_->send_bytes(bytes, steady_clock::now() + patience));
}

WebAnswer Browser::finish() {
    const auto deadline = steady_clock::now() + patience;
    std::string received;
    auto head_end = std::string::npos;
    while ((head_end = received.find(end_of_head)) == std::string::npos) {
        if (!receive_some(*connection_, received, deadline)) {
            connection_.reset();
            return {};
        }
    }
    WebAnswer answer{.status = 0, .head = received.substr(0, head_end + 2), .body = received.substr(head_end + 4)};
    answer.status = status_of(answer.head);
    const auto size = number(header(answer.head, "Content-Length"));
    while (answer.body.size() < size && receive_some(*connection_, answer.body, deadline)) {
    }
    if (!is_sent_ || header(answer.head, "Connection") == "close") {
        connection_.reset();
    }
    return answer;
}

WebAnswer Browser::send(const std::string& bytes) {
    begin(bytes);
    return finish();
}

WebAnswer Browser::get(const std::string& target, const std::string& more_headers) {
    return send(fmt::format("GET {} HTTP/1.1\r\nHost: 127.0.0.1:{}\r\n{}{}\r\n", target, console_port,
                            with_cookie(cookie), more_headers));
}

void Browser::begin_post(const std::string& target, const std::string& body, const std::string& more_headers) {
    begin(fmt::format("POST {} HTTP/1.1\r\nHost: 127.0.0.1:{}\r\nContent-Type: application/json\r\n"
                      "X-OLT-Console: 1\r\nContent-Length: {}\r\n{}{}\r\n{}",
                      target, console_port, body.size(), with_cookie(cookie), more_headers, body));
}

WebAnswer Browser::post(const std::string& target, const std::string& body, const std::string& more_headers) {
    begin_post(target, body, more_headers);
    return finish();
}

int Browser::log_in(const std::string& user) {
    const auto answer = post("/api/login", fmt::format(R"({{"user":"{0}","password":"{0}"}})", user));
    if (answer.status == 200) {
        cookie = answer.cookie();
    }
    return answer.status;
}

EventListener::EventListener(const Browser& browser, const std::string& query) : connection_(connect_to_console()) {
    const auto deadline = steady_clock::now() + std::chrono::seconds(10);
    const auto request = fmt::format("GET /api/events?{} HTTP/1.1\r\nHost: 127.0.0.1:{}\r\n{}\r\n", query, console_port,
                                     with_cookie(browser.cookie));
    EXPECT_TRUE(connection_.send_bytes(request, deadline));
    while (received_.find(end_of_head) == std::string::npos && receive(deadline)) {
    }
    status_ = status_of(received_);
    received_.erase(0, received_.find(end_of_head) + end_of_head.size());
}

std::string EventListener::next(const std::string& name, std::string_view text, std::chrono::milliseconds limit) {
    const auto deadline = steady_clock::now() + limit;
    const auto start = "event: " + name + "\ndata: ";
    do {
        for (auto end = received_.find("\n\n"); end != std::string::npos; end = received_.find("\n\n")) {
            const auto event = received_.substr(0, end);
            received_.erase(0, end + 2);
            if (event.starts_with(start) && event.find(text) != std::string::npos) {
                return event.substr(start.size());
            }
        }
    } while (receive(deadline));
    return "";
}

bool EventListener::ends(std::chrono::milliseconds limit) {
    const auto deadline = steady_clock::now() + limit;
    while (receive(deadline)) {
        received_.clear();
    }
    return is_over_;
}

bool EventListener::receive(steady_clock::time_point deadline) {
    const bool has_more = receive_some(connection_, received_, deadline);
    is_over_ = !has_more && steady_clock::now() < deadline;
    return has_more;
}

} // namespace xpon::test
