#pragma once

#include "api_service/auth/pam_interfaces.hpp"
#include "api_service/core_names.hpp"

#include <chrono>
#include <memory>
#include <string>

#include <security/pam_appl.h>

namespace xpon::api_service {

/// One PAM handle from pam_start to pam_end.
class PamSession : public IPamSession {
public:
    explicit PamSession(const std::shared_ptr<ILogger>& logger);
    ~PamSession() override;

    /// Checks the password and opens the session. Errors: NoAccess, "Invalid credentials", for a refused password;
    /// CommonError for the rest.
    Result<void> open_session(const std::string& user, const std::string& password);

    [[nodiscard]] std::chrono::steady_clock::time_point get_timestamp() const override;
    void set_timestamp(const std::chrono::steady_clock::time_point& timestamp) override;

private:
    static int converse(int message_count, const pam_message** messages, pam_response** responses, void* session);
    int answer(int message_count, pam_response** responses) const;

    Result<void> start(const std::string& user);

    std::shared_ptr<ILogger> logger_;
    pam_handle_t* handle_ = nullptr;
    pam_conv conversation_;
    std::string password_; ///< held while the modules may ask for it, then wiped
    std::chrono::steady_clock::time_point timestamp_;
};

/// Opens sessions through Linux-PAM.
class PamApi : public IPamApi {
public:
    explicit PamApi(const std::shared_ptr<ILogger>& logger);

    Result<std::shared_ptr<IPamSession>> open_session(const std::string& user, const std::string& password) override;

private:
    std::shared_ptr<ILogger> logger_;
};

} // namespace xpon::api_service
