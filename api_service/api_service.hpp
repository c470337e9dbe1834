#pragma once

#include "api_service/auth/pam_interfaces.hpp"
#include "api_service/auth/session_manager.hpp"
#include "api_service/change_log.hpp"
#include "api_service/client_socket.hpp"
#include "api_service/core_names.hpp"
#include "api_service/listener_socket.hpp"
#include "api_service/protocol/request_parser.hpp"
#include "api_service/protocol/route_manager.hpp"
#include "api_service/request_queue.hpp"
#include "xpon/ipc/ipc.hpp"
#include "xpon/service/service.hpp"

#include <atomic>
#include <cstddef>
#include <memory>
#include <vector>

namespace xpon::api_service {

/// The service: registers the routes, listens and answers requests until it is stopped. One thread does it all.
class ApiService : public service::ServiceBaseZEB {
public:
    /// Opens nothing: `run` does.
    ApiService(const std::shared_ptr<ipc::IIpc>& ipc, const std::shared_ptr<ILogger>& logger, Endpoint endpoint);
    /// The same with another way to check passwords.
    ApiService(const std::shared_ptr<ipc::IIpc>& ipc, const std::shared_ptr<ILogger>& logger, Endpoint endpoint,
               const std::shared_ptr<IPamApi>& pam);

    /// Throws what ListenerSocket throws.
    Result<void> run(const service::ServiceCtx& context) override;
    Result<void> stop(const service::ServiceCtx& context) override;
    /// Configuration changes do not concern this service.
    Result<void> config_change(const service::ServiceCtx& context,
                               const std::vector<service::Config_change>& changes) override;

    Result<void> register_routes();

    /// The lines about who changed what go to this logger, if it writes any; else to that of the service.
    void log_changes_to(const std::shared_ptr<ILogger>& logger) {
        changes_.write_to(logger);
    }

    /// Answers the oldest frame of a client. Refusals that have an answer of their own are successes; after an error
    /// the client still waits for an answer.
    Result<void> process_socket(const std::shared_ptr<IClientSocket>& socket);

private:
    Result<void> dispatch(IClientSocket& socket, Request& request);
    Result<void> run_pre_hooks(const RouteHandler& route, const std::shared_ptr<Session>& session, Request& request);
    /// `path` is for the log.
    Result<void> answer(IClientSocket& socket, Response response, const std::string& path);
    Result<void> answer_with_error(IClientSocket& socket, const std::shared_ptr<Session>& session, Json_errors index,
                                   const std::string& path);
    /// Serves those that wait, until it is time to look for more.
    void serve_turn(RequestQueue& waiting);
    void serve_client(const std::shared_ptr<IClientSocket>& socket);
    /// The client learns of every failure, if only by the end of its connection.
    void answer_frame(const std::shared_ptr<IClientSocket>& socket);

    std::shared_ptr<ipc::IIpc> ipc_;
    std::shared_ptr<ILogger> logger_;
    ChangeLog changes_;
    std::atomic<bool> running_{false};
    RouteManager route_manager_;
    RequestParser request_parser_;
    std::shared_ptr<SessionManager> session_manager_;
    std::shared_ptr<IPamApi> pam_;
    Endpoint endpoint_;
    std::size_t memory_used_ = 0; ///< bytes of small blocks, by one request since memory was last given back
};

} // namespace xpon::api_service
