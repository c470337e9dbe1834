#pragma once

#include "api_service/auth/session.hpp"
#include "xpon/core/result.hpp"

#include <memory>

namespace xpon::api_service {

/// Error `no_session_text` without a session.
core::Result<void> check_session(const std::shared_ptr<Session>& session, const char* no_session_text);

/// The session's database client. Errors: `no_session_text` without a session, "CfgDb context is missing".
core::Result<std::shared_ptr<cfgdb::CfgDbWrapper>> database_of(const std::shared_ptr<Session>& session,
                                                               const char* no_session_text);

} // namespace xpon::api_service
