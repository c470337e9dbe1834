#pragma once

#include "gateway/events/event_stream.hpp"
#include "gateway/http/message.hpp"
#include "gateway/site/services.hpp"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace boost::asio {
class io_context;
}

namespace xpon::gateway {

/// GET /api/events: all streams, and what they watch.
class EventEndpoint {
public:
    EventEndpoint(boost::asio::io_context& context, const Services& services)
        : context_(context), services_(services) {}

    void open(const HttpRequest& request, const Respond& respond);

    /// Tells the streams what is left of their sessions; to be called each second.
    void tick(Clock::time_point now);
    void session_has_ended(const std::shared_ptr<Session>& session, SessionEnd why);
    void service_has_changed();

private:
    struct Open {
        std::weak_ptr<EventStream> stream;
        Clock::time_point told;      ///< when it was told the time left
        Clock::time_point told_used; ///< what Session::used was then
    };

    std::shared_ptr<Watch> watch(const Session& session, PageRequest request);
    void tell_time_left(Open& open, Clock::time_point now) const;

    boost::asio::io_context& context_;
    const Services services_;
    std::vector<Open> streams_;
    std::map<std::string, std::weak_ptr<Watch>> watches_; ///< by privilege and request
};

} // namespace xpon::gateway
