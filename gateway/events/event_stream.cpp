#include "gateway/events/event_stream.hpp"

#include "gateway/daemon/trouble.hpp"

#include <fmt/format.h>

namespace xpon::gateway {

EventStream::EventStream(std::shared_ptr<Session> session, const std::vector<Item>& items)
    : session_(std::move(session)) {
    ++session_->streams;
    for (const auto& item : items) {
        places_.push_back(
            {.watch = item.watch, .number = item.watch->join(session_, item.interval, [this] { wake(); })});
    }
}

EventStream::~EventStream() {
    --session_->streams;
    for (const auto& place : places_) {
        place.watch->leave(place.number);
    }
}

void EventStream::tell_time_left(const TimeLeft& left) {
    time_left_ = left;
    wake();
}

void EventStream::tell_service(bool is_reachable) {
    service_ = is_reachable;
    wake();
}

void EventStream::end(SessionEnd why) {
    end_ = why;
    wake();
}

void EventStream::wake() {
    if (wake_) {
        wake_();
    }
}

std::optional<Event> EventStream::take() {
    if (!std::exchange(has_begun_, true)) {
        return Event{.head = "retry: 2000", .text = nullptr};
    }
    if (end_) {
        is_over_ = true;
        return Event{.head = fmt::format("event: end\ndata: {{\"reason\":\"{}\"}}", to_string(*end_)), .text = nullptr};
    }
    if (const auto left = std::exchange(time_left_, std::nullopt)) {
        return Event{.head = fmt::format("event: session\ndata: {{\"idle_left_s\":{},\"left_s\":{}}}",
                                         left->idle.count(), left->absolute.count()),
                     .text = nullptr};
    }
    if (const auto is_reachable = std::exchange(service_, std::nullopt)) {
        return Event{.head = fmt::format("event: service\ndata: {{\"reachable\":{}}}", *is_reachable), .text = nullptr};
    }
    for (std::size_t i = 0; i < places_.size(); ++i) {
        const auto number = (next_place_ + i) % places_.size();
        auto& place = places_[number];
        const auto latest = place.watch->latest();
        if (!latest || latest == place.told) {
            continue;
        }
        next_place_ = number + 1;
        place.told = latest;
        if (latest->answer) {
            return Event{.head = fmt::format("event: answer\ndata: {{\"watch\":{},\"answer\":", number),
                         .text = latest->answer};
        }
        const auto& facts = facts_of(latest->trouble);
        return Event{.head = fmt::format("event: trouble\ndata: {{\"watch\":{},\"error\":\"{}\",\"message\":\"{}\"}}",
                                         number, facts.code, facts.message),
                     .text = nullptr};
    }
    return std::nullopt;
}

} // namespace xpon::gateway
