#pragma once

#include "client/oltctl/session/session_file.hpp"
#include "xpon/client/client.hpp"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace xpon::oltctl {

/// The service as the commands see it: asked in the kept session, with a Failure for whatever goes wrong.
class Service {
public:
    Service(std::uint16_t port, std::chrono::milliseconds patience) : port_(port), patience_(patience) {}

    /// Logs in and keeps the session.
    KeptSession log_in(const std::string& user, const std::string& password);
    /// Ends the kept session, here and at the service.
    void log_out();
    /// The session that is kept. Failure (no_session) when there is none.
    const KeptSession& session();
    /// From now on this session, whichever is kept.
    void use(const KeptSession& session) {
        session_ = session;
    }

    /// Called before the user is asked for the password again, for a program that draws on the terminal.
    void before_asking(std::function<void()> call) {
        before_asking_ = std::move(call);
    }

    /// The answer to a good request. Failure when it is refused. When the session has expired and a person is there,
    /// the password is asked for and the request repeated.
    client::Answer ask(const client::Request& request);
    /// The same, for a request that can be refused in part: a Failure for a session that is no more, else the answer.
    client::Answer answer_to(const client::Request& request);
    /// The text of the answer, as it came. Sessions are dealt with as above.
    std::string text_of_answer_to(const client::Request& request);

private:
    client::Client& connected();
    void log_in_again();

    std::uint16_t port_;
    std::chrono::milliseconds patience_;
    std::optional<client::Client> client_;
    std::optional<KeptSession> session_;
    std::function<void()> before_asking_ = [] {};
};

/// The errors of an answer, one a line, as `what`'s.
std::string text_of_errors(const client::Answer& answer, const std::string& what);

} // namespace xpon::oltctl
