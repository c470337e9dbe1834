#pragma once

#include "api_service/auth/session.hpp"
#include "api_service/core_names.hpp"
#include "api_service/handlers/library_buffers.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"
#include "api_service/protocol/shape.hpp"
#include "xpon/core/c_status.hpp"
#include "xpon/core/guard.hpp"
#include "xpon/ipc/ipc.hpp"

#include <memory>
#include <utility>

namespace xpon::api_service {

/// What handlers are built on: the services that they work with, and the steps between request and answer that are the
/// same whatever is asked for. What is left to a handler is its own work.
class HandlerFrame {
public:
    /// Handlers that ask none of the device's daemons need no `ipc`.
    explicit HandlerFrame(std::shared_ptr<ILogger> logger, std::shared_ptr<ipc::IIpc> ipc = nullptr);

    /// Error "No session" without one.
    static Result<void> check_session(const std::shared_ptr<Session>& session);

    /// The session's database client. Errors: `no_session` without a session, "CfgDb context is missing".
    static Result<std::shared_ptr<cfgdb::CfgDbWrapper>> database_of(const std::shared_ptr<Session>& session,
                                                                    const char* no_session = no_session_text);

    // Calls that ask the device's daemons: C functions whose first argument is the handle for that, here with the other
    // arguments alone. When the daemons have used up the time that they have for this request, or the service is to
    // stop, none is made any more; the error is that of a call that fails.

    Result<Ipc*> peers() const;

    template <class Function, class... Args>
    Result<void> call_peers(Function&& function, Args&&... args) const {
        BOOST_OUTCOME_TRY(auto* const handle, peers());
        return core::call_c_api(*logger_, std::forward<Function>(function), handle, std::forward<Args>(args)...);
    }

    /// As fetch_buffer.
    template <class Record, class Function, class... Args>
    Result<LibraryBuffer<Record>> fetch_from_peers(Function function, Args... args) const {
        BOOST_OUTCOME_TRY(auto* const handle, peers());
        return fetch_buffer<Record>(*logger_, function, handle, args...);
    }

    /// As fetch_list.
    template <class List, class Function, class... Args>
    Result<LibraryBuffer<List>> fetch_list_from_peers(Function function, Args... args) const {
        BOOST_OUTCOME_TRY(auto* const handle, peers());
        return fetch_list<List>(*logger_, function, handle, args...);
    }

    /// The answer whose data is the tree, or the text, that `build` makes.
    template <class Build>
    Result<Response> answer_with_data(const std::shared_ptr<Session>& session, Build&& build) const {
        BOOST_OUTCOME_TRY(auto data, core::guarded(*logger_, std::forward<Build>(build)));
        auto response = Response::make_success_response(session, logger_);
        response.payload = Payload(std::move(data));
        return response;
    }

    /// The answer to a command: a C function of the device with its arguments. The answer is made first, so that lack
    /// of memory is found before the device is touched.
    template <class Command, class... Args>
    Result<Response> answer_to_command(const std::shared_ptr<Session>& session, Command&& command,
                                       Args&&... args) const {
        auto response = Response::make_success_response(session, logger_);
        BOOST_OUTCOME_TRY(core::call_c_api(*logger_, std::forward<Command>(command), std::forward<Args>(args)...));
        return response;
    }

    /// The same for one that asks a daemon.
    template <class Command, class... Args>
    Result<Response> answer_to_peer_command(const std::shared_ptr<Session>& session, Command&& command,
                                            Args&&... args) const {
        auto response = Response::make_success_response(session, logger_);
        BOOST_OUTCOME_TRY(call_peers(std::forward<Command>(command), std::forward<Args>(args)...));
        return response;
    }

    /// The answer to a faulty request: one error, about `path`.
    [[nodiscard]] Response refuse(const std::shared_ptr<Session>& session, Json_errors error, const char* path) const;

    /// The set of ports that the request's one index names.
    template <class Bitmap>
    Result<Bitmap> get_port_range(const Request& request, int (*parse)(const char* text, Bitmap* out)) const {
        if (request.indices.size() != 1) {
            return ErrorPayload(Error::InvalidInputArg, "Indices must contain exactly one element");
        }
        Bitmap ports{};
        BOOST_OUTCOME_TRY(core::call_c_api(*logger_, parse, request.indices.front().c_str(), &ports));
        return ports;
    }

protected:
    std::shared_ptr<ILogger> logger_;
    std::shared_ptr<ipc::IIpc> ipc_;
};

} // namespace xpon::api_service
