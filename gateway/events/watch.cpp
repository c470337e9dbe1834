#include "gateway/events/watch.hpp"

#include <algorithm>
#include <ranges>
#include <utility>

namespace xpon::gateway {
namespace {

// What is watched takes at most this part of the daemon's time, however large the answers are.
constexpr int pause_per_time_taken = 10;
constexpr auto pause_after_trouble = std::chrono::milliseconds(1000);

} // namespace

Watch::Watch(boost::asio::io_context& context, DaemonLink& daemon, std::chrono::milliseconds timeout,
             PageRequest request, SessionIsUnknown session_is_unknown)
    : daemon_(daemon), timeout_(timeout), request_(std::move(request)),
      session_is_unknown_(std::move(session_is_unknown)), timer_(context) {}

unsigned Watch::join(const std::shared_ptr<Session>& session, std::chrono::milliseconds interval, Changed changed) {
    watchers_.emplace(++last_number_, Watcher{session, interval, std::move(changed)});
    schedule(std::max(not_before_, last_asked_ + this->interval()));
    return last_number_;
}

void Watch::leave(unsigned number) {
    watchers_.erase(number);
    if (watchers_.empty()) {
        timer_.cancel();
    }
}

void Watch::schedule(Clock::time_point when) {
    if (is_under_way_ || watchers_.empty()) {
        return;
    }
    timer_.expires_at(when);
    timer_.async_wait([weak = weak_from_this()](boost::system::error_code cancelled) {
        const auto self = weak.lock();
        if (self && !cancelled) {
            self->ask();
        }
    });
}

void Watch::ask() {
    const auto usable = std::ranges::find_if(watchers_, [&](const auto& entry) {
        const auto& session = *entry.second.session;
        return !session.has_ended && session.api.incarnation == daemon_.incarnation();
    });
    if (is_under_way_ || usable == watchers_.end()) {
        return; // the sessions end, and their streams with them
    }
    is_under_way_ = true;
    last_asked_ = Clock::now();
    const auto session = usable->second.session;
    daemon_.ask({.text = print_for_session(request_, session->api.id),
                 .deadline = last_asked_ + timeout_,
                 .incarnation = session->api.incarnation,
                 .background = true,
                 .done = [weak = weak_from_this(), session, asked = last_asked_](const Reply& reply) {
                     if (const auto self = weak.lock()) {
                         self->take(session, reply, asked);
                     }
                 }});
}

void Watch::take(const std::shared_ptr<Session>& session, const Reply& reply, Clock::time_point asked) {
    const auto now = Clock::now();
    is_under_way_ = false;
    if (reply.answer && is_unknown_session(*reply.answer)) {
        session_is_unknown_(session); // which takes the session's watchers away
        schedule(now);
        return;
    }
    auto text = reply.answer ? print_for_page(*reply.answer) : std::nullopt;
    const auto trouble = reply.answer ? Trouble::lost : reply.trouble;
    const bool is_same = latest_ && (text ? latest_->answer && *latest_->answer == *text
                                          : !latest_->answer && latest_->trouble == trouble);
    if (!is_same) {
        auto answer = text ? std::make_shared<const std::string>(*std::move(text)) : nullptr;
        latest_ = std::make_shared<const Latest>(Latest{std::move(answer), trouble});
        for (const auto& watcher : watchers_ | std::views::values) {
            watcher.changed();
        }
    }
    not_before_ = now + (latest_->answer ? pause_per_time_taken * (now - asked) : pause_after_trouble);
    schedule(std::max(not_before_, asked + interval()));
}

std::chrono::milliseconds Watch::interval() const {
    auto shortest = std::chrono::milliseconds::max();
    for (const auto& watcher : watchers_ | std::views::values) {
        shortest = std::min(shortest, watcher.interval);
    }
    return watchers_.empty() ? std::chrono::milliseconds(0) : shortest;
}

} // namespace xpon::gateway
