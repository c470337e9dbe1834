#include "api_service/handlers/configuration/request_checks.hpp"

namespace xpon::api_service {

std::optional<Json_errors> find_request_error(const Request& request, std::size_t index_count) {
    if (request.indices.size() != index_count) {
        return Json_errors::wrong_index_count;
    }
    if (!request.config_type) {
        return Json_errors::wrong_config_type;
    }
    return std::nullopt;
}

Response make_request_error(Json_errors code, const char* method, const std::shared_ptr<Session>& session,
                            const std::shared_ptr<core::ILogger>& logger) {
    return Response::make_error_response(session, JsonError(code, method, logger), logger);
}

} // namespace xpon::api_service
