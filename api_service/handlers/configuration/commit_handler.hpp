#pragma once

#include "api_service/auth/session.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"
#include "xpon/ipc/ipc.hpp"

#include <memory>

namespace xpon::api_service {

/// Makes the candidate configuration the running one.
class CommitHandler {
public:
    CommitHandler(const std::shared_ptr<core::ILogger>& logger, const std::shared_ptr<ipc::IIpc>& ipc);

    /// A commit with nothing pending succeeds. A refused one is a success response that carries an error.
    core::Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

private:
    [[nodiscard]] JsonError describe_refusal(const core::ErrorPayload& error) const;

    std::shared_ptr<core::ILogger> logger_;
    std::shared_ptr<ipc::IIpc> ipc_;
};

} // namespace xpon::api_service
