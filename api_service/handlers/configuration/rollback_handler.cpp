#include "api_service/handlers/configuration/rollback_handler.hpp"

#include "api_service/handlers/session_checks.hpp"

namespace xpon::api_service {

RollbackHandler::RollbackHandler(const std::shared_ptr<core::ILogger>& logger) : logger_(logger) {}

core::Result<Response> RollbackHandler::operator()(const Request&, const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(const auto db, database_of(session, "No session"));
    BOOST_OUTCOME_TRY(db->rollback());
    return Response::make_success_response(session, logger_);
}

} // namespace xpon::api_service
