#pragma once

#include "gateway/sessions/token_bucket.hpp"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

namespace xpon::gateway {

using Clock = std::chrono::steady_clock;

/// Why a session is no more. The names that pages see are in sessions.cpp.
enum class SessionEnd : std::uint8_t { logged_out, idle, absolute, displaced, service_restarted, stopped };

/// What the API knows of a session. Its id counts 1, 2, 3 and never leaves this program.
struct ApiSession {
    std::string id;
    std::uint64_t incarnation = 0; ///< of the daemon that gave the id; any other takes it for somebody else's
    std::string user;
    std::string privilege; ///< "viewer", "operator" or "administrator"
};

/// One browser that has logged in.
struct Session {
    Session(std::string browser_id, ApiSession api_session, TokenBucket bucket, Clock::time_point now)
        : id(std::move(browser_id)), api(std::move(api_session)), began(now), used(now), rate(bucket) {}

    const std::string id; ///< what the cookie carries
    const ApiSession api;
    const Clock::time_point began;
    Clock::time_point used; ///< when its user last did something
    TokenBucket rate;
    std::size_t streams = 0;
    bool has_ended = false;
};

} // namespace xpon::gateway
