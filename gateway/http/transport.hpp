#pragma once

#include <cstddef>
#include <memory>

#include <boost/asio/awaitable.hpp>
#include <boost/asio/buffer.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/tcp_stream.hpp>

namespace boost::asio::ssl {
class context;
}

namespace xpon::gateway {

struct Transferred {
    boost::system::error_code failed;
    std::size_t bytes = 0;
};

/// The bytes to and from one browser, with or without TLS: what is written above it is compiled once, and no
/// instantiation of Asio's and Beast's operations but these exists. For coroutines, one reading and one writing at a
/// time; buffers live as long as the call takes.
class Transport {
public:
    Transport() = default;
    Transport(const Transport&) = delete;
    Transport& operator=(const Transport&) = delete;
    virtual ~Transport() = default;

    [[nodiscard]] virtual bool is_secure() const = 0;
    /// What both sides do before the first byte of HTTP.
    virtual boost::asio::awaitable<boost::system::error_code> open() = 0;
    virtual boost::asio::awaitable<Transferred> read_some(boost::asio::mutable_buffer buffer) = 0;
    /// All of it, one part after another.
    virtual boost::asio::awaitable<Transferred> write(boost::asio::const_buffer first,
                                                      boost::asio::const_buffer second = {},
                                                      boost::asio::const_buffer third = {}) = 0;
    /// Where times run out, and what is closed at the end; below TLS.
    virtual boost::beast::tcp_stream& lowest() = 0;
};

/// Null `tls`: without TLS. A context lives as long as the connections that began with it.
std::unique_ptr<Transport> make_transport(boost::asio::ip::tcp::socket socket,
                                          std::shared_ptr<boost::asio::ssl::context> tls);

} // namespace xpon::gateway
