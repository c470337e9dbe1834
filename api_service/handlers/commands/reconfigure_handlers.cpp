#include "api_service/handlers/commands/reconfigure_handlers.hpp"

#include "api_service/handlers/commands/device_command.hpp"
#include "api_service/handlers/port_range_index.hpp"
#include "xpon/custom_layer/commands.h"

namespace xpon::api_service {

using core::Result;

ReconfigureOltHandler::ReconfigureOltHandler(const std::shared_ptr<core::ILogger>& logger) : logger_(logger) {}

Result<Response> ReconfigureOltHandler::operator()(const Request&, const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(check_session(session, "No session"));
    return answer_to_command(session, logger_, custom_layer__reconfigure_olt);
}

ReconfigurePonPortHandler::ReconfigurePonPortHandler(const std::shared_ptr<core::ILogger>& logger,
                                                     const std::shared_ptr<ipc::IIpc>& ipc)
    : logger_(logger), ipc_(ipc) {}

Result<Response> ReconfigurePonPortHandler::operator()(const Request& request,
                                                       const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(check_session(session, "No session"));
    BOOST_OUTCOME_TRY(const auto ports,
                      get_port_range<Bitmap_pon_port_range>(*logger_, request, get_parsed_pon_port_range));
    return answer_to_command(session, logger_, [&] { return custom_layer__reconfigure_pon_port(ipc_->raw(), &ports); });
}

} // namespace xpon::api_service
