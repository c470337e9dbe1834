#include "api_service/handlers/session_checks.hpp"

namespace xpon::api_service {

using core::Error;
using core::ErrorPayload;

core::Result<void> check_session(const std::shared_ptr<Session>& session, const char* no_session_text) {
    if (session == nullptr) {
        return ErrorPayload(Error::InvalidInputArg, no_session_text);
    }
    return core::success();
}

core::Result<std::shared_ptr<cfgdb::CfgDbWrapper>> database_of(const std::shared_ptr<Session>& session,
                                                               const char* no_session_text) {
    BOOST_OUTCOME_TRY(check_session(session, no_session_text));
    if (session->cfgdb == nullptr) {
        return ErrorPayload(Error::InvalidInputArg, "CfgDb context is missing");
    }
    return session->cfgdb;
}

} // namespace xpon::api_service
