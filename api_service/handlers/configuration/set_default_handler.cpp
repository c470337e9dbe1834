#include "api_service/handlers/configuration/set_default_handler.hpp"

#include "api_service/handlers/session_checks.hpp"
#include "xpon/core/c_status.hpp"
#include "xpon/custom_layer/configuration.h"

namespace xpon::api_service {

ConfigurationSetDefaultHandler::ConfigurationSetDefaultHandler(const std::shared_ptr<core::ILogger>& logger,
                                                               const std::shared_ptr<ipc::IIpc>& ipc)
    : logger_(logger), ipc_(ipc) {}

core::Result<Response> ConfigurationSetDefaultHandler::operator()(const Request&,
                                                                  const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(const auto db, database_of(session, "No session"));
    auto response = Response::make_success_response(session, logger_);
    BOOST_OUTCOME_TRY(core::call_c_api(
        *logger_, [&] { return custom_layer__configuration_set_default(db->handle(), db->context()); }));
    return response;
}

} // namespace xpon::api_service
