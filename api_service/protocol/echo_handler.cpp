#include "api_service/protocol/echo_handler.hpp"

namespace xpon::api_service {

EchoHandler::EchoHandler(const std::shared_ptr<core::ILogger>& logger) : logger_(logger) {}

core::Result<Response> EchoHandler::operator()(const Request& request, const std::shared_ptr<Session>& session) const {
    auto response = Response::make_success_response(session, logger_);
    response.payload = request.data;
    return response;
}

} // namespace xpon::api_service
