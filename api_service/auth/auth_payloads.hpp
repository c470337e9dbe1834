#pragma once

#include "api_service/protocol/payload.hpp"
#include "api_service/protocol/privilege_level.hpp"
#include "xpon/core/result.hpp"

#include <string>

namespace xpon::api_service {

/// The data of a login request: {"user": .., "password": ..}.
struct AuthRequestPayload {
    /// Error InvalidInputArg when a member is missing or no string.
    static core::Result<AuthRequestPayload> from_payload(const Payload& payload);

    std::string user;
    std::string password;
};

/// The data of its answer: {"session_id": .., "web_privilege": name of the level}.
struct AuthResponsePayload {
    [[nodiscard]] core::Result<Payload> make_payload() const;

    std::string session_id;
    PrivilegeLevel privilege = PrivilegeLevel::Nothing;
};

} // namespace xpon::api_service
