#pragma once

#include "api_service/auth/pam_interfaces.hpp"
#include "xpon/core/logger.hpp"

#include <memory>
#include <string>

namespace xpon::api_service {

/// Opens sessions through Linux-PAM.
class PamApi : public IPamApi {
public:
    explicit PamApi(const std::shared_ptr<core::ILogger>& logger);

    core::Result<std::shared_ptr<IPamSession>> open_session(const std::string& user,
                                                            const std::string& password) override;

private:
    std::shared_ptr<core::ILogger> logger_;
};

} // namespace xpon::api_service
