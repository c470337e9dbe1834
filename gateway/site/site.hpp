#pragma once

#include "gateway/http/message.hpp"
#include "gateway/http/static_files.hpp"
#include "gateway/site/api_endpoint.hpp"
#include "gateway/site/event_endpoint.hpp"
#include "gateway/site/session_endpoints.hpp"

namespace xpon::gateway {

/// Everything that browsers reach: the table of endpoints, and the page's files for all other paths.
class Site {
public:
    Site(boost::asio::io_context& context, const Settings& settings);

    void start();
    /// `respond` may be called before this returns.
    void handle(const HttpRequest& request, const Respond& respond);
    /// Ends what is overdue; to be called each second.
    void tick();
    /// Ends all sessions, here and in the daemon. Whether there were any.
    bool stop();

private:
    struct Endpoint;
    static const Endpoint endpoints[];

    const Settings& settings_;
    DaemonLink daemon_;
    Sessions sessions_;
    SessionRequests requests_;
    Services services_;
    SessionEndpoints session_;
    ApiEndpoint api_;
    EventEndpoint events_;
    StaticFiles files_;
};

} // namespace xpon::gateway
