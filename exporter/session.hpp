#pragma once

#include "xpon/client/client.hpp"

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace xpon::exporter {

/// How a request or a login ended.
enum class Outcome {
    success,
    refused, ///< by the OLT, with a reason
    timed_out,
    unreachable, ///< no connection, or it broke off
    skipped,     ///< not sent: the collection had no time left, or there is no session
};

std::string_view to_string(Outcome outcome);

struct Account {
    std::string user;
    /// Holds the password in its first line. Mode 0600, or a credential that systemd has handed to this service.
    std::string password_file;
};

struct Reply {
    Outcome outcome = Outcome::skipped;
    client::Json data = {};
    std::string reason = {}; ///< of everything but success
};

/// One user of the OLT's API for as long as the exporter runs: connects and logs in when a request needs it, and again
/// once the daemon has been restarted. For one thread at a time.
class Session {
public:
    /// `login_pause`: how long a refused login is not tried again, unless the password file holds another password.
    /// Five wrong passwords within five minutes would lock the account.
    Session(std::uint16_t port, Account account, std::chrono::milliseconds patience, std::chrono::seconds login_pause);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session(); ///< logs out

    /// Sends the request within a session. What a restart of the daemon has broken is tried once more.
    Reply request(const client::Request& request);

    /// Logins so far by how they ended.
    [[nodiscard]] const std::map<Outcome, std::uint64_t>& logins() const {
        return logins_;
    }

private:
    Reply log_in();
    Reply ask(const client::Request& request);
    Reply lose_connection(const core::ErrorPayload& error);

    client::Endpoint endpoint_;
    Account account_;
    std::chrono::milliseconds patience_;
    std::chrono::seconds login_pause_;
    std::optional<client::Client> client_;
    std::string session_id_; // outlives a connection that timed out, but not one that the daemon closed
    std::string refused_password_;
    std::string refusal_;
    std::chrono::steady_clock::time_point next_login_;
    std::map<Outcome, std::uint64_t> logins_;
};

} // namespace xpon::exporter
