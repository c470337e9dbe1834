#pragma once

#include "api_service/auth/pam_interfaces.hpp"
#include "api_service/protocol/privilege_level.hpp"
#include "xpon/cfgdb/cfgdb_wrapper.hpp"

#include <memory>
#include <string>

namespace xpon::api_service {

/// The error of a request that needs a session and names none.
inline constexpr const char* no_session_text = "No session";

/// What a login creates. Costs bytes only: thousands that nobody closes are normal.
struct Session {
    Session(const std::string& session_id, const std::shared_ptr<IPamSession>& pam,
            const std::shared_ptr<cfgdb::CfgDbWrapper>& database_client)
        : id(session_id), pam_session(pam), cfgdb(database_client) {}

    const std::string id;
    PrivilegeLevel privilege = PrivilegeLevel::Administrator; ///< set to the user's own by the login
    std::shared_ptr<IPamSession> pam_session;
    std::shared_ptr<cfgdb::CfgDbWrapper> cfgdb;
};

} // namespace xpon::api_service
