#include "api_service/protocol/response.hpp"

#include "api_service/auth/session.hpp"

namespace xpon::api_service {
namespace {

std::string id_of(const std::shared_ptr<Session>& session) {
    return session == nullptr ? std::string() : session->id;
}

} // namespace

Response Response::make_success_response(const std::shared_ptr<Session>& session,
                                         const std::shared_ptr<ILogger>& logger) {
    return {.success = true, .session_id = id_of(session), .payload = {}, .errors = JsonErrors(logger)};
}

Response Response::make_error_response(const std::shared_ptr<Session>& session, const JsonErrors& errors,
                                       const std::shared_ptr<ILogger>&) {
    return {.success = false, .session_id = id_of(session), .payload = {}, .errors = errors};
}

Response Response::make_error_response(const std::shared_ptr<Session>& session, const JsonError& error,
                                       const std::shared_ptr<ILogger>& logger) {
    JsonErrors errors(logger);
    errors.add_error(error);
    return make_error_response(session, errors, logger);
}

} // namespace xpon::api_service
