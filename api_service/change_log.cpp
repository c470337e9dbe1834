#include "api_service/change_log.hpp"

#include "xpon/core/printable_text.hpp"

#include <exception>
#include <string>
#include <utility>

#include <sys/stat.h>

#include <fmt/format.h>

namespace xpon::api_service {
ChangeLog::ChangeLog(std::shared_ptr<ILogger> logger)
    : service_logger_(std::move(logger)), own_logger_(service_logger_) {}

void ChangeLog::write_to(std::shared_ptr<ILogger> logger) {
    own_logger_ = std::move(logger);
}

ILogger& ChangeLog::logger() {
    return own_logger_->is_enabled(core::LogLevel::Notice) ? *own_logger_ : *service_logger_;
}

void ChangeLog::refused(const ChangeRecord& change, int client) {
    if (change.is_change && refusals_.admits(LineLimit::Clock::now())) {
        write(change, change.session_id, client, "refused");
    }
}

void ChangeLog::failed(const ChangeRecord& change, int client) {
    // Without a session nothing can have been changed, and anybody can fail.
    if (change.is_change && (!change.session_id.empty() || refusals_.admits(LineLimit::Clock::now()))) {
        write(change, change.session_id, client, "failed");
    }
}

void ChangeLog::answered(const ChangeRecord& change, int client, const Result<Response>& response) {
    if (!response) {
        failed(change, client);
    } else if (!response.value().success || !response.value().errors.empty()) {
        refused(change, client);
    } else if (change.is_change) {
        write(change, response.value().session_id, client, "done");
    }
}

void ChangeLog::write(const ChangeRecord& change, std::string_view session_id, int client, std::string_view outcome) {
    core::log(logger(), core::LogLevel::Notice, "Session {}: {}: {}{}", session_id.empty() ? "none" : session_id,
              change.subject, outcome, peer_text(client, change.is_login));
}

/// " (uid 65534, pid 4711)", or nothing, also for lack of memory: what was done is not undone by its line.
std::string ChangeLog::peer_text(int client, bool with_process) noexcept {
    try {
        const auto peer = peer_of(client);
        if (!peer) {
            return {};
        }
        const auto process = with_process ? find_process_of(*peer) : std::nullopt;
        return process ? fmt::format(" (uid {}, pid {})", peer->uid, *process) : fmt::format(" (uid {})", peer->uid);
    } catch (const std::exception&) {
        return {};
    }
}

std::optional<LocalPeer> ChangeLog::peer_of(int client) {
    struct stat own{};
    if (::fstat(client, &own) == 0 && own.st_ino == last_asked_) {
        return last_peer_;
    }
    const auto peer = find_local_peer(client);
    last_asked_ = peer ? own.st_ino : 0;
    last_peer_ = peer.value_or(LocalPeer{});
    return peer;
}

void ChangeLog::unknown_session(const Request& request, int client) {
    if (unknown_sessions_.admits(LineLimit::Clock::now())) {
        core::log(logger(), core::LogLevel::Notice, "Session {} is unknown: {} {}: refused{}",
                  core::quoted_text(request.session_id.value_or(""), 32), core::quoted_text(request.method, 32),
                  core::quoted_text(request.path), peer_text(client, true));
    }
}

void ChangeLog::tell_held_back() {
    if (!refusals_.has_held_back() && !unknown_sessions_.has_held_back()) {
        return; // the loop asks at every turn
    }
    const auto now = LineLimit::Clock::now();
    const std::pair<LineLimit*, const char*> limits[] = {{&refusals_, "changes"},
                                                         {&unknown_sessions_, "requests of unknown sessions"}};
    for (const auto& [limit, what] : limits) {
        if (const auto held_back = limit->take_held_back(now); held_back > 0) {
            core::log(logger(), core::LogLevel::Notice, "{} more {} refused", held_back, what);
        }
    }
}

} // namespace xpon::api_service
