#include "gateway/sessions/sessions.hpp"

#include "gateway/sessions/session_id.hpp"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace xpon::gateway {
namespace {

// Enough for every browser of an operator's office to learn in the morning why it was logged out.
constexpr std::size_t remembered_ends = 1024;

// By SessionEnd.
constexpr std::array<std::string_view, 6> end_names{"logged_out",        "idle",           "absolute", "displaced",
                                                    "service_restarted", "console_stopped"};

} // namespace

std::string_view to_string(SessionEnd end) {
    return end_names.at(static_cast<std::size_t>(end));
}

bool Sessions::has_room_for(const std::string& user) const {
    return sessions_.size() < settings_.sessions ||
           std::ranges::any_of(sessions_, [&](const auto& entry) { return entry.second->api.user == user; });
}

std::shared_ptr<Session> Sessions::open(ApiSession api, Clock::time_point now) {
    std::vector<std::shared_ptr<Session>> of_user;
    for (const auto& [id, session] : sessions_) {
        if (session->api.user == api.user) {
            of_user.push_back(session);
        }
    }
    std::ranges::sort(of_user, {}, &Session::used);
    // Refusing would lock users out who have closed their browsers without logging out.
    const bool is_full = sessions_.size() >= settings_.sessions;
    const auto allowed = std::min(settings_.sessions_per_user, is_full ? of_user.size() : settings_.sessions_per_user);
    for (std::size_t i = 0; i + allowed <= of_user.size() && i < of_user.size(); ++i) {
        end(of_user[i], SessionEnd::displaced);
    }
    const TokenBucket bucket(settings_.requests_per_second, settings_.request_burst, now);
    auto session = std::make_shared<Session>(make_session_id(), std::move(api), bucket, now);
    sessions_.emplace(session->id, session);
    return session;
}

std::shared_ptr<Session> Sessions::find(const std::string& id, Clock::time_point now) {
    const auto found = sessions_.find(id);
    if (found == sessions_.end()) {
        return nullptr;
    }
    auto session = found->second;
    if (const auto why = due(*session, now)) {
        end(session, *why);
        return nullptr;
    }
    return session;
}

void Sessions::end(const std::shared_ptr<Session>& session, SessionEnd why) {
    if (sessions_.erase(session->id) == 0) {
        return;
    }
    session->has_ended = true;
    past_.emplace(session->id, why);
    past_in_order_.push_back(session->id);
    if (past_in_order_.size() > remembered_ends) {
        past_.erase(past_in_order_.front());
        past_in_order_.pop_front();
    }
    ended_(session, why);
}

template <class Rule>
void Sessions::end_those(const Rule& rule) {
    std::vector<std::pair<std::shared_ptr<Session>, SessionEnd>> ending; // `ended_` may come back to the map
    for (const auto& [id, session] : sessions_) {
        if (const auto why = rule(*session)) {
            ending.emplace_back(session, *why);
        }
    }
    for (const auto& [session, why] : ending) {
        end(session, why);
    }
}

void Sessions::end_overdue(Clock::time_point now) {
    end_those([&](const Session& session) { return due(session, now); });
}

void Sessions::end_those_before(std::uint64_t incarnation) {
    end_those([&](const Session& session) {
        return session.api.incarnation == incarnation ? std::nullopt : std::optional(SessionEnd::service_restarted);
    });
}

void Sessions::end_all(SessionEnd why) {
    end_those([&](const Session&) { return std::optional(why); });
}

std::optional<SessionEnd> Sessions::due(const Session& session, Clock::time_point now) const {
    if (now - session.began >= settings_.absolute_timeout) {
        return SessionEnd::absolute;
    }
    return now - session.used >= settings_.idle_timeout ? std::optional(SessionEnd::idle) : std::nullopt;
}

TimeLeft Sessions::time_left(const Session& session, Clock::time_point now) const {
    const auto until = [&](Clock::time_point from, std::chrono::seconds limit) {
        return std::max(std::chrono::ceil<std::chrono::seconds>(from + limit - now), std::chrono::seconds(0));
    };
    return {.idle = until(session.used, settings_.idle_timeout),
            .absolute = until(session.began, settings_.absolute_timeout)};
}

std::optional<SessionEnd> Sessions::why_ended(const std::string& id) const {
    const auto found = past_.find(id);
    return found == past_.end() ? std::nullopt : std::optional(found->second);
}

} // namespace xpon::gateway
