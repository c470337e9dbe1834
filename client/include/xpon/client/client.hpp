#pragma once

#include "xpon/client/connection.hpp"
#include "xpon/client/message.hpp"
#include "xpon/core/result.hpp"

#include <chrono>
#include <string>

namespace xpon::client {

/// One user of the API: a connection and, after a login, a session whose id every request carries.
class Client {
public:
    /// `patience`: how long one request may take.
    static core::Result<Client> connect(const Endpoint& endpoint = TcpEndpoint{},
                                        std::chrono::milliseconds patience = std::chrono::seconds(10));

    /// The daemon's answer to a login. When it grants one, later requests belong to the new session.
    core::Result<Answer> log_in(const std::string& user, const std::string& password);
    /// Ends the session. Later requests carry no session id.
    core::Result<Answer> log_out();

    /// Sends the request and waits for its answer. A refusal is an answer too: see Answer::success.
    core::Result<Answer> request(const Request& request);
    /// The same with texts: one frame there, one frame back.
    core::Result<std::string> exchange(const std::string& frame);

    [[nodiscard]] const std::string& session_id() const {
        return session_id_;
    }
    void set_session_id(std::string id) {
        session_id_ = std::move(id);
    }
    [[nodiscard]] Connection& connection() {
        return connection_;
    }

private:
    Client(Connection connection, std::chrono::milliseconds patience)
        : connection_(std::move(connection)), patience_(patience) {}

    Connection connection_;
    std::chrono::milliseconds patience_;
    std::string session_id_;
};

} // namespace xpon::client
