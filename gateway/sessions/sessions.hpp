#pragma once

#include "gateway/sessions/session.hpp"
#include "gateway/settings.hpp"

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace xpon::gateway {

/// How pages are told of it: "idle", "absolute", ...
std::string_view to_string(SessionEnd end);

/// What is left of a session, in whole seconds, rounded up; 0 is the end.
struct TimeLeft {
    std::chrono::seconds idle;     ///< until it ends unless its user does something
    std::chrono::seconds absolute; ///< until it ends in any case

    bool operator==(const TimeLeft&) const = default;
};

/// All sessions, and for a while those that have ended. A session ends here, whatever pages do: whoever asks for one
/// that is overdue does not get it.
class Sessions {
public:
    using Ended = std::function<void(const std::shared_ptr<Session>&, SessionEnd)>;

    /// `ended` is told of each end, once.
    Sessions(const Settings& settings, Ended ended) : settings_(settings), ended_(std::move(ended)) {}

    /// Whether one more can be opened for this user; the user's least recently used one may have to go for it.
    [[nodiscard]] bool has_room_for(const std::string& user) const;
    std::shared_ptr<Session> open(ApiSession api, Clock::time_point now);
    /// Null for an id that is none, or no more.
    std::shared_ptr<Session> find(const std::string& id, Clock::time_point now);
    /// Its user has done something.
    static void touch(Session& session, Clock::time_point now) {
        session.used = now;
    }
    /// `session` is the caller's own pointer, not the one in here.
    void end(const std::shared_ptr<Session>& session, SessionEnd why);

    void end_overdue(Clock::time_point now);
    /// Ends all that belong to another incarnation of the daemon than this one.
    void end_those_before(std::uint64_t incarnation);
    void end_all(SessionEnd why);

    [[nodiscard]] TimeLeft time_left(const Session& session, Clock::time_point now) const;
    /// Empty for ids that were never given out, and for those that ended long ago.
    [[nodiscard]] std::optional<SessionEnd> why_ended(const std::string& id) const;
    [[nodiscard]] std::size_t size() const {
        return sessions_.size();
    }

private:
    [[nodiscard]] std::optional<SessionEnd> due(const Session& session, Clock::time_point now) const;
    template <class Rule>
    void end_those(const Rule& rule);

    const Settings& settings_;
    Ended ended_;
    std::map<std::string, std::shared_ptr<Session>, std::less<>> sessions_;
    std::map<std::string, SessionEnd, std::less<>> past_;
    std::deque<std::string> past_in_order_; // oldest first
};

} // namespace xpon::gateway
