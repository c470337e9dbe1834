#pragma once

#include "api_service/handlers/handler_frame.hpp"

#include <memory>

// Commands that move the configuration between its stores.

namespace xpon::api_service {

/// Makes the candidate configuration the running one.
class CommitHandler : HandlerFrame {
public:
    using HandlerFrame::HandlerFrame;

    static constexpr RouteShape shape{.has_errors_with_success = true};

    /// A commit with nothing pending succeeds. A refused one is a success response that carries an error.
    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

private:
    [[nodiscard]] JsonError describe_refusal(const ErrorPayload& error) const;
};

/// Drops the changes of the candidate configuration.
class RollbackHandler : HandlerFrame {
public:
    using HandlerFrame::HandlerFrame;

    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;
};

/// Writes the running configuration to persistent storage.
class ConfigurationSaveHandler : HandlerFrame {
public:
    using HandlerFrame::HandlerFrame;

    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;
};

/// Fills the candidate configuration with factory defaults; a commit makes them run.
class ConfigurationSetDefaultHandler : HandlerFrame {
public:
    using HandlerFrame::HandlerFrame;

    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;
};

} // namespace xpon::api_service
