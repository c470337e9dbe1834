#include "api_service/api_service.hpp"

#include "api_service/auth/pam_session.hpp"
#include "api_service/freed_memory.hpp"
#include "api_service/poller.hpp"
#include "api_service/protocol/route_table.hpp"
#include "api_service/request_memory.hpp"
#include "api_service/send_buffer.hpp"
#include "xpon/core/call_budget.hpp"
#include "xpon/core/guard.hpp"

#include <algorithm>
#include <chrono>
#include <utility>

namespace xpon::api_service {
namespace {

/// After this long the loop looks for new requests before it serves more of those that it has. So a request waits for
/// those that came before it, and not for all that the others send meanwhile.
constexpr auto longest_turn = RequestQueue::long_request;

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
    RequestQueue waiting;
    while (running_.load(std::memory_order_acquire)) {
        changes_.tell_held_back();
        const auto clients = poller.poll(std::chrono::milliseconds(waiting.empty() ? 1000 : 0));
        if (!clients) {
            log_error(*logger_, "{}", clients.error().to_string());
            return clients.error();
        }
        const auto queued = core::guarded(*logger_, [&]() -> Result<void> {
            waiting.add(clients.value(), RequestQueue::Clock::now());
            return core::success();
        });
        if (!queued) { // without memory for the queue nobody waits
            std::ranges::for_each(clients.value(), [this](const auto& client) { serve_client(client); });
        }
        serve_turn(waiting);
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

void ApiService::serve_turn(RequestQueue& waiting) {
    auto now = RequestQueue::Clock::now();
    const auto end = now + longest_turn;
    while (!waiting.empty() && now < end) {
        const auto client = waiting.take();
        serve_client(client);
        const auto begin = std::exchange(now, RequestQueue::Clock::now());
        client->set_last_request_took(now - begin);
    }
}

void ApiService::serve_client(const std::shared_ptr<IClientSocket>& socket) {
    {
        const RequestMemory::Scope memory;
        answer_frame(socket);
    }
    give_back_freed_memory(std::exchange(memory_used_, 0));
}

void ApiService::answer_frame(const std::shared_ptr<IClientSocket>& socket) {
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
