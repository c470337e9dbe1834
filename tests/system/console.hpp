#pragma once

#include "tests/support/process.hpp"
#include "xpon/client/connection.hpp"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace xpon::test {

inline constexpr std::uint16_t console_port = 8080;

/// The gateway on port 8080 of the test's own network, with settings of the test's choice. Fails the test when it does
/// not become ready.
class Console {
public:
    explicit Console(const std::vector<std::string>& options = {});

    Process& process() {
        return process_;
    }

private:
    Process process_;
};

struct WebAnswer {
    int status = 0; ///< 0: there was none
    std::string head;
    std::string body;

    /// The cookie that the browser is told to keep, NAME=VALUE; "" for none.
    [[nodiscard]] std::string cookie() const;
};

/// A browser with one tab: a connection, which is opened anew when it is gone, and a cookie.
class Browser {
public:
    WebAnswer get(const std::string& target, const std::string& more_headers = "");
    /// With the headers of the console's page.
    WebAnswer post(const std::string& target, const std::string& body = "", const std::string& more_headers = "");
    /// Any bytes, and what comes back.
    WebAnswer send(const std::string& bytes);
    /// `post` in two halves: what is asked, and its answer.
    void begin_post(const std::string& target, const std::string& body, const std::string& more_headers = "");
    WebAnswer finish();
    /// With the user's name as password; keeps the cookie. The status.
    int log_in(const std::string& user);

    std::string cookie; ///< NAME=VALUE; "" for none

private:
    void begin(const std::string& bytes);

    std::optional<client::Connection> connection_;
    bool is_sent_ = false;
};

/// What a page hears of /api/events.
class EventListener {
public:
    EventListener(const Browser& browser, const std::string& query);

    /// The status of the answer.
    [[nodiscard]] int status() const {
        return status_;
    }
    /// The data of the next event of that name that holds `text`, others are passed over; "" when none comes in time.
    std::string next(const std::string& name, std::string_view text = "",
                     std::chrono::milliseconds limit = std::chrono::seconds(10));
    /// Whether the stream ends before `limit`.
    bool ends(std::chrono::milliseconds limit = std::chrono::seconds(10));

private:
    bool receive(std::chrono::steady_clock::time_point deadline);

    client::Connection connection_;
    int status_ = 0;
    bool is_over_ = false;
    std::string received_;
};

} // namespace xpon::test
