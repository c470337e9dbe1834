#include "api_service/api_service.hpp"

#include "api_service/auth/pam_session.hpp"
#include "api_service/freed_memory.hpp"
#include "api_service/poller.hpp"
#include "api_service/protocol/route_table.hpp"
#include "api_service/request_memory.hpp"
#include "api_service/send_buffer.hpp"
#include "xpon/core/call_budget.hpp"
#include "xpon/core/guard.hpp"

#include <chrono>
#include <utility>

namespace xpon::api_service {
namespace {

/// After this long the loop looks for new requests before it serves more of those that it has. So a request waits for
/// those that came before it, and not for all that the others send meanwhile.
constexpr std::chrono::milliseconds longest_turn{2};

/// What the device's daemons may take of one request, all calls together: the other clients wait meanwhile.
constexpr std::chrono::seconds peers_time{5};

} // namespace

ApiService::ApiService(const std::shared_ptr<ipc::IIpc>& ipc, const std::shared_ptr<ILogger>& logger, Endpoint endpoint)
    : ApiService(ipc, logger, std::move(endpoint), std::make_shared<PamApi>(logger)) {}

ApiService::ApiService(const std::shared_ptr<ipc::IIpc>& ipc, const std::shared_ptr<ILogger>& logger, Endpoint endpoint,
                       const std::shared_ptr<IPamApi>& pam)
    : ipc_(ipc), logger_(logger), changes_(logger), route_manager_(logger), request_parser_(logger),
      session_manager_(std::make_shared<SessionManager>(logger)), pam_(pam), endpoint_(std::move(endpoint)) {}

Result<void> ApiService::run(const service::ServiceCtx&) {
    running_.store(true, std::memory_order_release);
    if (auto registered = register_routes(); !registered) {
        log_error(*logger_, "{}", registered.error().to_string());
        return registered;
    }
    try_send_buffer(*logger_);
    Poller poller(logger_, std::make_unique<ListenerSocket>(endpoint_));
    give_back_pages_of_start();
    std::vector<std::shared_ptr<IClientSocket>> waiting; // one entry a frame to serve, oldest first
    while (running_.load(std::memory_order_acquire)) {
        changes_.tell_held_back();
        auto clients = poller.poll(std::chrono::milliseconds(waiting.empty() ? 1000 : 0));
        if (!clients) {
            log_error(*logger_, "{}", clients.error().to_string());
            return clients.error();
        }
        const auto queued = core::guarded(*logger_, [&]() -> Result<void> {
            waiting.insert(waiting.end(), clients.value().begin(), clients.value().end());
            return core::success();
        });
        serve_turn(waiting);
        while (!queued && !clients.value().empty()) { // without memory for the queue nobody waits
            serve_turn(clients.value());
        }
    }
    return core::success();
}

Result<void> ApiService::stop(const service::ServiceCtx&) {
    running_.store(false, std::memory_order_release);
    return core::success();
}

Result<void> ApiService::config_change(const service::ServiceCtx&, const std::vector<service::Config_change>&) {
    return core::success();
}

Result<void> ApiService::register_routes() {
    const HandlerServices services{.logger = logger_, .ipc = ipc_, .session_manager = session_manager_, .pam = pam_};
    for (const auto& row : route_table()) {
        BOOST_OUTCOME_TRY(core::guarded(
            *logger_,
            [&] {
                return route_manager_.add_route(
                    row.path, row.method,
                    RouteHandler(row.target.make_handler(services), row.privilege, row.make_pre_hooks(services)));
            },
            core::exception_text_unpadded));
    }
    return core::success();
}

void ApiService::serve_turn(std::vector<std::shared_ptr<IClientSocket>>& waiting) {
    using Clock = std::chrono::steady_clock;
    // A request alone, as most are, needs no clock.
    const auto end = waiting.size() > 1 ? Clock::now() + longest_turn : Clock::time_point();
    auto next = waiting.begin();
    while (next != waiting.end()) {
        {
            const RequestMemory::Scope memory;
            serve_client(*next++);
        }
        give_back_freed_memory(std::exchange(memory_used_, 0));
        if (next != waiting.end() && Clock::now() >= end) {
            break;
        }
    }
    waiting.erase(waiting.begin(), next);
}

void ApiService::serve_client(const std::shared_ptr<IClientSocket>& socket) {
    const core::CallBudget budget(peers_time, running_);
    if (core::guarded(*logger_, [&] { return process_socket(socket); }) || socket->is_shut_down()) {
        return;
    }
    const auto answered = core::guarded(*logger_, [&] {
        return answer_with_error(*socket, nullptr, Json_errors::request_not_processed, "api_service");
    });
    if (!answered) {
        socket->shut_down(); // the client would wait for an answer for ever
    }
}

} // namespace xpon::api_service
