#pragma once

#include "gateway/access_log.hpp"
#include "gateway/http/message.hpp"

#include <cstddef>
#include <functional>
#include <memory>

#include <boost/asio/ip/tcp.hpp>

namespace boost::asio::ssl {
class context;
}

namespace xpon::gateway {

/// What all connections share.
struct ConnectionSetup {
    std::function<void(const HttpRequest&, const Respond&)> handle;
    AccessLog& log;
    std::size_t body_bytes; ///< the largest body of a request
};

/// Speaks HTTP/1.1 with one browser until either side has enough of it; then calls `over`. Null `tls`: without TLS.
/// A browser that is silent or slow inside a request, or does not take what it is sent, is given up after a while.
void serve_connection(boost::asio::ip::tcp::socket socket, const ConnectionSetup& setup,
                      std::shared_ptr<boost::asio::ssl::context> tls, std::function<void()> over);

} // namespace xpon::gateway
