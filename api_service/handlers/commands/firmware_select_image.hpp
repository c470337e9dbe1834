#pragma once

#include "api_service/auth/session.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"
#include "xpon/ipc/ipc.hpp"

#include <cstdint>
#include <memory>

namespace xpon::api_service {

/// Chooses the firmware image that runs after the next boot.
class FirmwareSelectImage {
public:
    /// `selector` is a Firmware_selector.
    FirmwareSelectImage(const std::shared_ptr<core::ILogger>& logger, const std::shared_ptr<ipc::IIpc>& ipc,
                        std::uint32_t selector);

    core::Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

private:
    std::shared_ptr<core::ILogger> logger_;
    std::shared_ptr<ipc::IIpc> ipc_;
    std::uint32_t selector_;
};

} // namespace xpon::api_service
