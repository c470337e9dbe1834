#pragma once

#include "gateway/daemon/daemon_link.hpp"
#include "gateway/daemon/message_text.hpp"
#include "gateway/sessions/session.hpp"

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <boost/asio/steady_timer.hpp>

namespace xpon::gateway {

/// What the daemon last answered to a request that pages watch, or why it did not.
struct Latest {
    std::shared_ptr<const std::string> answer; ///< as pages get it; null while there is trouble
    Trouble trouble{};
};

/// One request that is repeated for all pages that watch the same thing with the same privilege, in the name of one of
/// them.
class Watch : public std::enable_shared_from_this<Watch> {
public:
    using Changed = std::function<void()>;
    using SessionIsUnknown = std::function<void(const std::shared_ptr<Session>&)>;

    Watch(boost::asio::io_context& context, DaemonLink& daemon, std::chrono::milliseconds timeout, PageRequest request,
          SessionIsUnknown session_is_unknown);

    /// `changed` is called whenever `latest` has become another one, until `leave` with the same number.
    unsigned join(const std::shared_ptr<Session>& session, std::chrono::milliseconds interval, Changed changed);
    void leave(unsigned number);
    [[nodiscard]] bool is_watched() const {
        return !watchers_.empty();
    }
    /// Null before the first answer.
    [[nodiscard]] const std::shared_ptr<const Latest>& latest() const {
        return latest_;
    }

private:
    struct Watcher {
        std::shared_ptr<Session> session;
        std::chrono::milliseconds interval;
        Changed changed;
    };

    void schedule(Clock::time_point when);
    void ask();
    void take(const std::shared_ptr<Session>& session, const Reply& reply, Clock::time_point asked);
    [[nodiscard]] std::chrono::milliseconds interval() const;

    DaemonLink& daemon_;
    std::chrono::milliseconds timeout_;
    PageRequest request_;
    SessionIsUnknown session_is_unknown_;
    boost::asio::steady_timer timer_;
    std::map<unsigned, Watcher> watchers_;
    unsigned last_number_ = 0;
    bool is_under_way_ = false;
    Clock::time_point not_before_{}; ///< the next question
    Clock::time_point last_asked_{};
    std::shared_ptr<const Latest> latest_;
};

} // namespace xpon::gateway
