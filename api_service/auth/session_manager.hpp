#pragma once

#include "api_service/auth/session.hpp"
#include "api_service/core_names.hpp"

#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace xpon::api_service {

/// The open sessions. A session stays until it is closed; there is no expiry.
class SessionManager {
public:
    explicit SessionManager(const std::shared_ptr<ILogger>& logger);
    SessionManager(const SessionManager&) = delete;
    SessionManager& operator=(const SessionManager&) = delete;
    virtual ~SessionManager() = default;

    /// Ids are "1", "2", .. and are never reused. Throws when the session's database client cannot be made.
    Result<std::shared_ptr<Session>> new_session(const std::shared_ptr<IPamSession>& pam_session);

    /// Empty when there is no session with exactly this id.
    [[nodiscard]] std::shared_ptr<Session> lookup_session(const std::string& id) const;

    /// Succeeds for an unknown id, too.
    Result<void> close_session(const std::string& id);

private:
    std::map<std::string, std::shared_ptr<Session>> sessions_;
    std::shared_ptr<ILogger> logger_;
    std::int32_t last_id_ = 0;
};

} // namespace xpon::api_service
