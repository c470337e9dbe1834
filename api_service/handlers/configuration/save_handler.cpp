#include "api_service/handlers/configuration/save_handler.hpp"

#include "api_service/handlers/session_checks.hpp"
#include "xpon/core/c_status.hpp"
#include "xpon/custom_layer/configuration.h"

namespace xpon::api_service {
namespace {

constexpr const char* saved_configuration = "/configuration/save-config";

} // namespace

ConfigurationSaveHandler::ConfigurationSaveHandler(const std::shared_ptr<core::ILogger>& logger,
                                                   const std::shared_ptr<ipc::IIpc>& ipc)
    : logger_(logger), ipc_(ipc) {}

core::Result<Response> ConfigurationSaveHandler::operator()(const Request&,
                                                            const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(const auto db, database_of(session, "No session"));
    // Made first, so that lack of memory is found before anything is written.
    auto response = Response::make_success_response(session, logger_);
    BOOST_OUTCOME_TRY(core::call_c_api(*logger_, [&] {
        return custom_layer__configuration_save(ipc_->raw(), db->handle(), db->context(), saved_configuration);
    }));
    return response;
}

} // namespace xpon::api_service
