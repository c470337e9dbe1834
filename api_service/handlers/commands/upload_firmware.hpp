#pragma once

#include "api_service/auth/session.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"
#include "xpon/ipc/ipc.hpp"

#include <memory>
#include <string>

namespace xpon::api_service {

/// Which firmware file to install.
class UploadFirmwareRequest {
public:
    /// From data such as {"path": "/firmware/image.bin"}. The custom layer judges the path.
    static core::Result<UploadFirmwareRequest> get_from_payload(const Payload& payload);

    [[nodiscard]] std::string get_path() const;

private:
    explicit UploadFirmwareRequest(std::string path);

    std::string path_;
};

/// Installs a firmware file that is on the device already.
class UploadFirmware {
public:
    UploadFirmware(const std::shared_ptr<core::ILogger>& logger, const std::shared_ptr<ipc::IIpc>& ipc);

    /// Data that names no file is an error response.
    core::Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

private:
    std::shared_ptr<core::ILogger> logger_;
    std::shared_ptr<ipc::IIpc> ipc_;
};

} // namespace xpon::api_service
