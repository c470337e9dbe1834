#pragma once

#include "api_service/core_names.hpp"

#include <chrono>
#include <memory>
#include <string>

namespace xpon::api_service {

/// An open PAM session; destroying it closes it.
class IPamSession {
public:
    IPamSession() = default;
    IPamSession(const IPamSession&) = delete;
    IPamSession& operator=(const IPamSession&) = delete;
    virtual ~IPamSession() = default;

    [[nodiscard]] virtual std::chrono::steady_clock::time_point get_timestamp() const = 0;
    virtual void set_timestamp(const std::chrono::steady_clock::time_point& timestamp) = 0;
};

/// Checks passwords.
class IPamApi {
public:
    IPamApi() = default;
    IPamApi(const IPamApi&) = delete;
    IPamApi& operator=(const IPamApi&) = delete;
    virtual ~IPamApi() = default;

    /// Blocks for as long as the PAM stack takes. A refused password is an error of code NoAccess.
    virtual Result<std::shared_ptr<IPamSession>> open_session(const std::string& user, const std::string& password) = 0;
};

} // namespace xpon::api_service
