#include "gateway/site/event_endpoint.hpp"

#include "gateway/events/subscription.hpp"
#include "xpon/core/json_tree.hpp"

#include <utility>

#include <fmt/format.h>

namespace xpon::gateway {
namespace {

// Also shows whether the page is still there.
constexpr auto heartbeat = std::chrono::seconds(15);

} // namespace

void EventEndpoint::open(const HttpRequest& request, const Respond& respond) {
    auto [session, refusal] = caller_of(request, services_);
    if (!session) {
        respond(std::move(refusal));
        return;
    }
    if (session->streams >= services_.settings.streams_per_session) {
        respond(error_response(429, "too_many_streams",
                               fmt::format("A session has {} event streams at most.", session->streams)));
        return;
    }
    auto read = read_subscription(request.query(), services_.settings);
    if (!read) {
        respond(error_response(400, "bad_request", read.error().info ? read.error().info->message : ""));
        return;
    }
    std::vector<EventStream::Item> items;
    for (auto& item : read.value()) {
        items.push_back({.watch = watch(*session, std::move(item.request)), .interval = item.interval});
    }
    const auto now = Clock::now();
    auto stream = std::make_shared<EventStream>(session, items);
    streams_.push_back({.stream = stream, .told = {}, .told_used = {}});
    tell_time_left(streams_.back(), now);
    stream->tell_service(services_.daemon.is_up());
    respond({.status = 200,
             .content_type = "text/event-stream",
             .headers = {{"Cache-Control", "no-store"}, {"X-Accel-Buffering", "no"}},
             .stream = std::move(stream),
             .user = session->api.user});
}

std::shared_ptr<Watch> EventEndpoint::watch(const Session& session, PageRequest request) {
    auto& known = watches_[session.api.privilege + ' ' + core::print_line(request.tree.get()).get()];
    auto watch = known.lock();
    if (!watch) {
        watch = std::make_shared<Watch>(context_, services_.daemon, services_.settings.request_timeout,
                                        std::move(request), [sessions = &services_.sessions](const auto& unknown) {
                                            sessions->end(unknown, SessionEnd::service_restarted);
                                        });
        known = watch;
    }
    return watch;
}

void EventEndpoint::tell_time_left(Open& open, Clock::time_point now) const {
    const auto stream = open.stream.lock();
    if (!stream) {
        return;
    }
    const auto& session = *stream->session();
    if (now - open.told >= heartbeat || session.used != open.told_used) {
        open.told = now;
        open.told_used = session.used;
        stream->tell_time_left(services_.sessions.time_left(session, now));
    }
}

void EventEndpoint::tick(Clock::time_point now) {
    std::erase_if(streams_, [](const Open& open) { return open.stream.expired(); });
    std::erase_if(watches_, [](const auto& entry) { return entry.second.expired(); });
    for (auto& open : streams_) {
        tell_time_left(open, now);
    }
}

void EventEndpoint::session_has_ended(const std::shared_ptr<Session>& session, SessionEnd why) {
    for (const auto& open : streams_) {
        if (const auto stream = open.stream.lock(); stream && stream->session() == session) {
            stream->end(why);
        }
    }
}

void EventEndpoint::service_has_changed() {
    for (const auto& open : streams_) {
        if (const auto stream = open.stream.lock()) {
            stream->tell_service(services_.daemon.is_up());
        }
    }
}

} // namespace xpon::gateway
