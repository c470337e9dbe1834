#pragma once

#include "gateway/events/watch.hpp"
#include "gateway/sessions/sessions.hpp"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace xpon::gateway {

/// One event as it goes out: `head`, then, if there is a text, that and a closing brace, then an empty line.
struct Event {
    std::string head;
    std::shared_ptr<const std::string> text; ///< may be null; all streams share the last answers
};

/// What one page gets to know without asking (server-sent events, HTML Living Standard, 9.2). Holds no events: only
/// what there is to tell, which is written down when the page takes it. A page that reads slowly misses states in
/// between.
class EventStream {
public:
    struct Item {
        std::shared_ptr<Watch> watch;
        std::chrono::milliseconds interval;
    };

    EventStream(std::shared_ptr<Session> session, const std::vector<Item>& items);
    EventStream(const EventStream&) = delete;
    EventStream& operator=(const EventStream&) = delete;
    ~EventStream();

    [[nodiscard]] const std::shared_ptr<Session>& session() const {
        return session_;
    }

    void tell_time_left(const TimeLeft& left);
    void tell_service(bool is_reachable);
    /// The last event.
    void end(SessionEnd why);

    /// The next event; empty when there is nothing to tell now.
    std::optional<Event> take();
    /// Whether the last one has been taken.
    [[nodiscard]] bool is_over() const {
        return is_over_;
    }
    /// `wake` is called when there is something to take.
    void on_wake(std::function<void()> wake) {
        wake_ = std::move(wake);
    }

private:
    struct Place {
        std::shared_ptr<Watch> watch;
        unsigned number = 0; ///< as which this stream watches
        std::shared_ptr<const Latest> told = {};
    };

    void wake();

    std::shared_ptr<Session> session_;
    std::vector<Place> places_;
    std::size_t next_place_ = 0; ///< so that none is starved by those before it
    std::optional<TimeLeft> time_left_;
    std::optional<bool> service_;
    std::optional<SessionEnd> end_;
    bool has_begun_ = false;
    bool is_over_ = false;
    std::function<void()> wake_;
};

} // namespace xpon::gateway
