#include "api_service/handlers/commands/firmware_select_image.hpp"

#include "api_service/handlers/commands/device_command.hpp"
#include "xpon/custom_layer/commands.h"

namespace xpon::api_service {

FirmwareSelectImage::FirmwareSelectImage(const std::shared_ptr<core::ILogger>& logger,
                                         const std::shared_ptr<ipc::IIpc>& ipc, std::uint32_t selector)
    : logger_(logger), ipc_(ipc), selector_(selector) {}

core::Result<Response> FirmwareSelectImage::operator()(const Request&, const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(check_session(session, "No session"));
    return answer_to_command(session, logger_,
                             [&] { return custom_layer__select_image(ipc_->raw(), selector_, nullptr); });
}

} // namespace xpon::api_service
