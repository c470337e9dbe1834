#pragma once

#include "api_service/protocol/request.hpp"

#include <string>

namespace xpon::api_service {

/// What a request that logs in or out, writes, deletes or commands is about, in the words of the log. Data never
/// appears in it, but for the user name of a login.
struct ChangeRecord {
    /// Taken before pre-hooks rewrite the indices.
    explicit ChangeRecord(const Request& request);

    bool is_change;
    bool is_login = false;
    std::string session_id; ///< of the request
    std::string subject;    ///< method, path and indices or user
};

} // namespace xpon::api_service
