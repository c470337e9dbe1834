#include "api_service/auth/session_manager.hpp"

#include <cstdlib>
#include <limits>

namespace xpon::api_service {

SessionManager::SessionManager(const std::shared_ptr<ILogger>& logger) : logger_(logger) {}

Result<std::shared_ptr<Session>> SessionManager::new_session(const std::shared_ptr<IPamSession>& pam_session) {
    auto database_client = std::make_shared<cfgdb::CfgDbWrapper>("API-SERV_CFGDB");
    if (last_id_ == std::numeric_limits<std::int32_t>::max()) {
        core::log(*logger_, core::LogLevel::Fatal, "Session ids are used up");
        std::abort(); // an id must never come twice in one run
    }
    const auto id = std::to_string(++last_id_);
    auto session = std::make_shared<Session>(id, pam_session, database_client);
    sessions_.emplace(id, session);
    return session;
}

std::shared_ptr<Session> SessionManager::lookup_session(const std::string& id) const {
    const auto found = sessions_.find(id);
    return found == sessions_.end() ? nullptr : found->second;
}

Result<void> SessionManager::close_session(const std::string& id) {
    sessions_.erase(id);
    return core::success();
}

} // namespace xpon::api_service
