#pragma once

#include "gateway/daemon/daemon_link.hpp"
#include "gateway/sessions/session.hpp"

#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>

namespace xpon::gateway {

/// What pages ask in the name of their sessions. The requests of one session reach the daemon one after another, in the
/// order in which they came.
class SessionRequests {
public:
    /// `most_waiting`: of one session, with the one that is under way.
    SessionRequests(DaemonLink& daemon, std::size_t most_waiting) : daemon_(daemon), most_waiting_(most_waiting) {}

    /// False when too many of the session's wait already; `done` is not called then.
    bool ask(const std::shared_ptr<Session>& session, std::string text, Clock::time_point deadline,
             std::function<void(Reply)> done);
    /// Gives up those of the session that have not been sent.
    void drop(const std::shared_ptr<Session>& session);

private:
    void send_first(const std::shared_ptr<Session>& session);

    DaemonLink& daemon_;
    std::size_t most_waiting_;
    std::map<std::shared_ptr<Session>, std::deque<Question>> queues_; // never empty; the first is under way
};

} // namespace xpon::gateway
