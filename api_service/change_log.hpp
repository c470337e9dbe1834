#pragma once

#include "api_service/change_record.hpp"
#include "api_service/core_names.hpp"
#include "api_service/line_limit.hpp"
#include "api_service/local_peer.hpp"
#include "api_service/protocol/response.hpp"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace xpon::api_service {

/// One line in the log for each request that logs in or out, writes, deletes or commands: who changed what is the first
/// question after a fault. Each names the local user at the other end where the kernel tells him, a login his process,
/// too. What was done, or failed in a session, always leaves its line; what anybody can cause does so at a limited
/// rate.
class ChangeLog {
public:
    explicit ChangeLog(std::shared_ptr<ILogger> logger);

    /// The lines go to `logger` from now on, if it writes lines of their level.
    void write_to(std::shared_ptr<ILogger> logger);

    /// A change that was refused before its handler was asked. `client` is the descriptor of the connection.
    void refused(const ChangeRecord& change, int client);
    /// A change that failed before its handler was asked.
    void failed(const ChangeRecord& change, int client);
    /// A change whose outcome is what the handler answered.
    void answered(const ChangeRecord& change, int client, const Result<Response>& response);
    /// Any request with the id of no session.
    void unknown_session(const Request& request, int client);

    /// Tells how many lines have been held back, once a minute at most.
    void tell_held_back();

private:
    void write(const ChangeRecord& change, std::string_view session_id, int client, std::string_view outcome);
    ILogger& logger();
    std::string peer_text(int client, bool with_process) noexcept;
    std::optional<LocalPeer> peer_of(int client);

    std::shared_ptr<ILogger> service_logger_;
    std::shared_ptr<ILogger> own_logger_;
    /// The other end of the connection that was last asked about: a client mostly changes one thing after another, and
    /// asking takes six system calls. No two sockets that are open have the same inode, none is without.
    LocalPeer last_peer_;
    ino_t last_asked_ = 0;
    LineLimit refusals_{60, std::chrono::minutes(1)};
    LineLimit unknown_sessions_{10, std::chrono::minutes(1)};
};

} // namespace xpon::api_service
