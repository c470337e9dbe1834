// The way of one request through the service: frame, request, session, route, privilege, pre-hooks, handler, answer.

#include "api_service/api_service.hpp"
#include "api_service/auth/secret_wiping.hpp"
#include "api_service/freed_memory.hpp"
#include "api_service/protocol/json_writer.hpp"
#include "api_service/request_memory.hpp"
#include "xpon/core/guard.hpp"

#include <utility>

namespace xpon::api_service {
namespace {

constexpr const char* own_path = "api_service";

/// Logs the error of a failed step on its way to the caller.
template <class T>
Result<T> logged(ILogger& logger, Result<T> result) {
    if (!result) {
        log_error(logger, "{}", result.error().to_string());
    }
    return result;
}

} // namespace

Result<void> ApiService::process_socket(const std::shared_ptr<IClientSocket>& socket) {
    if (socket->get_frames_left() == 0) {
        return core::success();
    }
    BOOST_OUTCOME_TRY(auto frame, core::guarded(*logger_, [&] { return socket->get_frame(); }));
    const WipeAtExit wipe(frame);
    if (const auto tree_bytes = frame.size() * tree_bytes_per_text_byte; tree_bytes > RequestMemory::most_bytes) {
        memory_used_ = tree_bytes;
    }
    auto request = logged(*logger_, core::guarded(*logger_, [&] { return request_parser_.parse_request(frame); }));
    if (!request) {
        RequestMemory::wipe_unused();
        return std::move(request).error();
    }
    return dispatch(*socket, request.value());
}

Result<void> ApiService::dispatch(IClientSocket& socket, Request& request) {
    std::shared_ptr<Session> session;
    if (request.session_id) {
        session = session_manager_->lookup_session(*request.session_id);
        if (session == nullptr) {
            changes_.unknown_session(request, socket.get_fd());
            return answer_with_error(socket, nullptr, Json_errors::access_denied, own_path);
        }
    }
    BOOST_OUTCOME_TRY(const auto* const route,
                      logged(*logger_, route_manager_.find_route(request.path, request.method)));
    const ChangeRecord change(request);
    const auto privilege = session == nullptr ? PrivilegeLevel::Nothing : session->privilege;
    if (privilege < route->privilege) {
        changes_.refused(change, socket.get_fd());
        return answer_with_error(socket, session, Json_errors::access_denied, own_path);
    }
    if (auto hooked = run_pre_hooks(*route, session, request); !hooked) {
        changes_.failed(change, socket.get_fd()); // the answer does not say why, the lines before do
        return hooked;
    }
    auto response = core::guarded(*logger_, [&] { return route->handler(request, session); });
    if (!response) {
        // The client learns no cause: the log names the request and its cause, before the outcome.
        log_error(*logger_, "{} {}: {}", request.method, request.path, response.error().to_string());
    }
    changes_.answered(change, socket.get_fd(), response);
    if (!response) {
        return answer_with_error(socket, session, Json_errors::request_not_processed, request.path);
    }
    return answer(socket, std::move(response).value(), request.path);
}

Result<void> ApiService::run_pre_hooks(const RouteHandler& route, const std::shared_ptr<Session>& session,
                                       Request& request) {
    for (const auto& hook : route.pre_hooks) {
        BOOST_OUTCOME_TRY(logged(*logger_, core::guarded(*logger_, [&] { return hook(session, request); })));
    }
    return core::success();
}

Result<void> ApiService::answer(IClientSocket& socket, Response response, const std::string& path) {
    BOOST_OUTCOME_TRY(auto text, logged(*logger_, core::guarded(*logger_, [&] {
                          return request_parser_.make_response(std::move(response));
                      })));
    auto sent = core::guarded(*logger_, [&] { return socket.send_frame(text); });
    if (!sent) {
        log_error(*logger_, "Answer of {}: {}", path, sent.error().to_string());
    }
    JsonWriter::reuse(std::move(text));
    return sent;
}

Result<void> ApiService::answer_with_error(IClientSocket& socket, const std::shared_ptr<Session>& session,
                                           Json_errors index, const std::string& path) {
    return answer(socket, Response::make_error_response(session, JsonError(index, path, logger_), logger_), path);
}

} // namespace xpon::api_service
