#include "api_service/handlers/commands/reboot_handler.hpp"

#include "api_service/handlers/commands/device_command.hpp"
#include "xpon/custom_layer/commands.h"

namespace xpon::api_service {

RebootHandler::RebootHandler(const std::shared_ptr<core::ILogger>& logger) : logger_(logger) {}

core::Result<Response> RebootHandler::operator()(const Request&, const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(check_session(session, "No session"));
    return answer_to_command(session, logger_, [] { return custom_layer__reboot(reboot_now); });
}

} // namespace xpon::api_service
