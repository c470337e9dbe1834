#include "api_service/auth/unauth_handler.hpp"

#include "xpon/core/guard.hpp"

namespace xpon::api_service {

using core::Result;

UnauthHandler::UnauthHandler(const std::shared_ptr<core::ILogger>& logger,
                             const std::shared_ptr<SessionManager>& session_manager)
    : logger_(logger), session_manager_(session_manager) {}

Result<Response> UnauthHandler::operator()(const Request&, const std::shared_ptr<Session>& session) const {
    const auto close = [&]() -> Result<Response> {
        if (session == nullptr) {
            log_error(*logger_, "No session");
            return core::ErrorPayload(core::Error::InvalidInputArg);
        }
        BOOST_OUTCOME_TRY(session_manager_->close_session(session->id));
        return Response::make_success_response(session, logger_);
    };
    return core::guarded(*logger_, close, core::exception_text_unpadded);
}

} // namespace xpon::api_service
