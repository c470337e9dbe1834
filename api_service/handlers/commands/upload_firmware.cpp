#include "api_service/handlers/commands/upload_firmware.hpp"

#include "api_service/handlers/commands/device_command.hpp"
#include "xpon/custom_layer/commands.h"

namespace xpon::api_service {

using core::Result;

namespace {

/// What the error of bad data is about. No route has this name: clients know the command by it.
constexpr const char* command_name = R"(command.upload_firmware)";

} // namespace

Result<UploadFirmwareRequest> UploadFirmwareRequest::get_from_payload(const Payload& payload) {
    const char* path = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(payload.get(), "path"));
    if (path == nullptr) {
        return core::ErrorPayload(core::Error::InvalidInputArg, "\"path\" must be a string");
    }
    return UploadFirmwareRequest(path);
}

std::string UploadFirmwareRequest::get_path() const {
    return path_;
}

UploadFirmwareRequest::UploadFirmwareRequest(std::string path) : path_(std::move(path)) {}

UploadFirmware::UploadFirmware(const std::shared_ptr<core::ILogger>& logger, const std::shared_ptr<ipc::IIpc>& ipc)
    : logger_(logger), ipc_(ipc) {}

Result<Response> UploadFirmware::operator()(const Request& request, const std::shared_ptr<Session>& session) const {
    const auto upload = UploadFirmwareRequest::get_from_payload(request.data);
    if (!upload) {
        log_error(*logger_, "Unable to parse payload");
        return Response::make_error_response(session, JsonError(Json_errors::cannot_parse, command_name, logger_),
                                             logger_);
    }
    return answer_to_command(
        session, logger_, [path = upload.value().get_path()] { return custom_layer__update_firmware(path.c_str()); });
}

} // namespace xpon::api_service
