#include "api_service/handlers/handler_frame.hpp"

#include "xpon/core/call_budget.hpp"

namespace xpon::api_service {

HandlerFrame::HandlerFrame(std::shared_ptr<ILogger> logger, std::shared_ptr<ipc::IIpc> ipc)
    : logger_(std::move(logger)), ipc_(std::move(ipc)) {}

Result<void> HandlerFrame::check_session(const std::shared_ptr<Session>& session) {
    if (session == nullptr) {
        return ErrorPayload(Error::InvalidInputArg, no_session_text);
    }
    return core::success();
}

Result<std::shared_ptr<cfgdb::CfgDbWrapper>> HandlerFrame::database_of(const std::shared_ptr<Session>& session,
                                                                       const char* no_session) {
    if (session == nullptr) {
        return ErrorPayload(Error::InvalidInputArg, no_session);
    }
    if (session->cfgdb == nullptr) {
        return ErrorPayload(Error::InvalidInputArg, "CfgDb context is missing");
    }
    return session->cfgdb;
}

Result<Ipc*> HandlerFrame::peers() const {
    BOOST_OUTCOME_TRY(core::check_call_budget(*logger_));
    return ipc_->raw();
}

Response HandlerFrame::refuse(const std::shared_ptr<Session>& session, Json_errors error, const char* path) const {
    return Response::make_error_response(session, JsonError(error, path, logger_), logger_);
}

} // namespace xpon::api_service
