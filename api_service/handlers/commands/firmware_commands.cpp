#include "api_service/handlers/commands/firmware_commands.hpp"

#include "xpon/custom_layer/commands.h"

namespace xpon::api_service {
namespace {

/// What the error of bad data is about. No route has this name: clients know the command by it.
constexpr const char* command_name = R"(command.upload_firmware)";

constexpr Member request_members[] = {{"path", &shapes::text, "of the file on the device"}};

} // namespace

constinit const RouteShape UploadFirmware::shape{.request = &object_of<request_members>};

Result<UploadFirmwareRequest> UploadFirmwareRequest::get_from_payload(const Payload& payload) {
    const char* path = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(payload.get(), "path"));
    if (path == nullptr) {
        return ErrorPayload(Error::InvalidInputArg, "\"path\" must be a string");
    }
    return UploadFirmwareRequest(path);
}

std::string UploadFirmwareRequest::get_path() const {
    return path_;
}

UploadFirmwareRequest::UploadFirmwareRequest(std::string path) : path_(std::move(path)) {}

Result<Response> UploadFirmware::operator()(const Request& request, const std::shared_ptr<Session>& session) const {
    const auto upload = UploadFirmwareRequest::get_from_payload(request.data);
    if (!upload) {
        log_error(*logger_, "Unable to parse payload");
        return refuse(session, Json_errors::cannot_parse, command_name);
    }
    return answer_to_command(session, custom_layer__update_firmware, upload.value().get_path().c_str());
}

FirmwareSelectImage::FirmwareSelectImage(const std::shared_ptr<ILogger>& logger, const std::shared_ptr<ipc::IIpc>& ipc,
                                         std::uint32_t selector)
    : HandlerFrame(logger, ipc), selector_(selector) {}

Result<Response> FirmwareSelectImage::operator()(const Request&, const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(check_session(session));
    return answer_to_peer_command(session, custom_layer__select_image, selector_, nullptr);
}

} // namespace xpon::api_service
