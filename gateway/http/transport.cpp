#include "gateway/http/transport.hpp"

#include "gateway/as_result.hpp"

#include <array>
#include <utility>

#include <boost/asio/ssl/context.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/stream_traits.hpp>
#include <boost/beast/ssl/ssl_stream.hpp>

namespace xpon::gateway {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
using boost::system::error_code;

template <class Stream>
class StreamTransport : public Transport {
public:
    template <class... Arguments>
    explicit StreamTransport(Arguments&&... arguments) : stream_(std::forward<Arguments>(arguments)...) {}

    asio::awaitable<Transferred> read_some(asio::mutable_buffer buffer) override {
        auto [failed, bytes] = co_await stream_.async_read_some(buffer, as_result);
        co_return Transferred{.failed = failed, .bytes = bytes};
    }

    asio::awaitable<Transferred> write(asio::const_buffer first, asio::const_buffer second,
                                       asio::const_buffer third) override {
        const std::array parts{first, second, third};
        auto [failed, bytes] = co_await asio::async_write(stream_, parts, as_result);
        co_return Transferred{.failed = failed, .bytes = bytes};
    }

    beast::tcp_stream& lowest() override {
        return beast::get_lowest_layer(stream_);
    }

protected:
    Stream stream_;
};

class PlainTransport final : public StreamTransport<beast::tcp_stream> {
public:
    using StreamTransport::StreamTransport;

    [[nodiscard]] bool is_secure() const override {
        return false;
    }
    asio::awaitable<error_code> open() override {
        co_return error_code();
    }
};

class SecureTransport final : public StreamTransport<beast::ssl_stream<beast::tcp_stream>> {
public:
    SecureTransport(asio::ip::tcp::socket socket, std::shared_ptr<asio::ssl::context> tls)
        : StreamTransport(std::move(socket), *tls), tls_(std::move(tls)) {}

    [[nodiscard]] bool is_secure() const override {
        return true;
    }
    asio::awaitable<error_code> open() override {
        auto [failed] = co_await stream_.async_handshake(asio::ssl::stream_base::server, as_result);
        co_return failed;
    }

private:
    std::shared_ptr<asio::ssl::context> tls_;
};

} // namespace

std::unique_ptr<Transport> make_transport(asio::ip::tcp::socket socket, std::shared_ptr<asio::ssl::context> tls) {
    if (tls == nullptr) {
        return std::make_unique<PlainTransport>(std::move(socket));
    }
    return std::make_unique<SecureTransport>(std::move(socket), std::move(tls));
}

} // namespace xpon::gateway
