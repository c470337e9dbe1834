#pragma once

#include "api_service/handlers/handler_frame.hpp"

#include <cstdint>
#include <memory>
#include <string>

namespace xpon::api_service {

/// Which firmware file to install.
class UploadFirmwareRequest {
public:
    /// From data such as {"path": "/firmware/image.bin"}. The custom layer judges the path.
    static Result<UploadFirmwareRequest> get_from_payload(const Payload& payload);

    [[nodiscard]] std::string get_path() const;

private:
    explicit UploadFirmwareRequest(std::string path);

    std::string path_;
};

/// Installs a firmware file that is on the device already.
class UploadFirmware : HandlerFrame {
public:
    using HandlerFrame::HandlerFrame;

    static const RouteShape shape;

    /// Data that names no file is an error response.
    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;
};

/// Chooses the firmware image that runs after the next boot.
class FirmwareSelectImage : HandlerFrame {
public:
    /// `selector` is a Firmware_selector.
    FirmwareSelectImage(const std::shared_ptr<ILogger>& logger, const std::shared_ptr<ipc::IIpc>& ipc,
                        std::uint32_t selector);

    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

private:
    std::uint32_t selector_;
};

} // namespace xpon::api_service
