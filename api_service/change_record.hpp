#pragma once

#include "api_service/core_names.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"

#include <string>
#include <string_view>

namespace xpon::api_service {

/// One line in the log for each request that logs in or out, writes, deletes or commands: who changed what is the
/// first question after a fault. Data never appears in it, but for the user name of a login.
class ChangeRecord {
public:
    /// Taken before pre-hooks rewrite the indices.
    explicit ChangeRecord(const Request& request);

    void report(ILogger& logger, std::string_view outcome) const;
    /// The outcome is what the handler answered.
    void report(ILogger& logger, const Result<Response>& response) const;

private:
    void write(ILogger& logger, std::string_view session_id, std::string_view outcome) const;

    bool is_change_;
    std::string session_id_;
    std::string subject_; ///< method, path and indices or user
};

} // namespace xpon::api_service
