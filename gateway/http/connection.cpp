#include "gateway/http/connection.hpp"

#include "gateway/events/event_stream.hpp"
#include "gateway/http/request_rules.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <chrono>
#include <ctime>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include <boost/asio/as_tuple.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/buffer.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/stream_traits.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/rfc7230.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/beast/http/write.hpp>
#include <boost/beast/ssl/ssl_stream.hpp>
#include <fmt/chrono.h>

namespace xpon::gateway {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
using asio::ip::tcp;
using boost::system::error_code;
using Clock = std::chrono::steady_clock;
using PlainStream = beast::tcp_stream;
using SecureStream = beast::ssl_stream<beast::tcp_stream>;

constexpr auto as_result = asio::as_tuple(asio::use_awaitable);

constexpr std::uint32_t header_bytes = 16 * 1024;
constexpr auto handshake_time = std::chrono::seconds(10);
constexpr auto keep_alive_time = std::chrono::seconds(75); ///< between requests
constexpr auto header_time = std::chrono::seconds(10);
constexpr auto body_time = std::chrono::seconds(30);
constexpr auto send_time = std::chrono::seconds(60);
constexpr auto event_time = std::chrono::seconds(30); ///< for one event to be taken
// What a client still sends after a refusal is taken, or it would see a broken connection in place of the refusal.
constexpr auto linger_time = std::chrono::seconds(10);
constexpr std::size_t linger_bytes = 256UL << 20U;

HttpRequest plain(const http::request<http::string_body>& parsed, const std::string& peer, bool is_secure) {
    HttpRequest request{.method = std::string(parsed.method_string()),
                        .target = std::string(parsed.target()),
                        .headers = {},
                        .body = parsed.body(),
                        .peer = peer,
                        .is_secure = is_secure};
    for (const auto& field : parsed) {
        std::string name(field.name_string());
        std::ranges::transform(name, name.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        request.headers.emplace_back(std::move(name), std::string(field.value()));
    }
    return request;
}

http::response<http::string_body> head_of(const HttpResponse& response, bool is_secure, bool keep_alive) {
    http::response<http::string_body> message;
    message.result(response.status);
    message.version(11);
    message.keep_alive(keep_alive);
    message.set(http::field::date, fmt::format("{:%a, %d %b %Y %H:%M:%S} GMT", fmt::gmtime(std::time(nullptr))));
    if (!response.content_type.empty()) {
        message.set(http::field::content_type, response.content_type);
    }
    for (const auto& [name, value] : security_headers(is_secure)) {
        message.set(beast::string_view(name.data(), name.size()), value);
    }
    for (const auto& [name, value] : response.headers) {
        message.insert(beast::string_view(name.data(), name.size()), value);
    }
    return message;
}

/// What to say of a request that cannot be read; empty when there is nobody to hear it.
std::optional<HttpResponse> refusal_of(const error_code& error) {
    if (error == http::error::header_limit) {
        return error_response(431, "too_large", "The headers are too large");
    }
    if (error == http::error::body_limit) {
        return error_response(413, "too_large", "The body is too large");
    }
    const bool is_bad = error.category() == http::make_error_code(http::error::bad_version).category() &&
                        error != http::error::end_of_stream && error != http::error::partial_message;
    return is_bad ? std::optional(error_response(400, "bad_request", "This is not HTTP/1.1")) : std::nullopt;
}

/// The handler's answer, which may take its time.
asio::awaitable<HttpResponse> answer(const ConnectionSetup& setup, const HttpRequest& request) {
    return asio::async_initiate<const asio::use_awaitable_t<>, void(HttpResponse)>(
        [&setup, &request](auto resume) {
            const auto shared = std::make_shared<decltype(resume)>(std::move(resume));
            setup.handle(request, [shared](HttpResponse response) {
                const auto executor = asio::get_associated_executor(*shared);
                asio::post(executor, [shared, response = std::move(response)]() mutable {
                    std::move (*shared)(std::move(response));
                });
            });
        },
        asio::use_awaitable);
}

// Overloads, because g++ 12 miscompiles a coroutine with an `if constexpr` around co_await.
asio::awaitable<bool> shake_hands(PlainStream& /*stream*/) {
    co_return true;
}

asio::awaitable<bool> shake_hands(SecureStream& stream) {
    beast::get_lowest_layer(stream).expires_after(handshake_time);
    auto [failed] = co_await stream.async_handshake(asio::ssl::stream_base::server, as_result);
    co_return !failed;
}

/// One browser's connection, with or without TLS.
template <class Stream>
class Connection : public std::enable_shared_from_this<Connection<Stream>> {
public:
    Connection(Stream stream, std::string peer, const ConnectionSetup& setup)
        : stream_(std::move(stream)), peer_(std::move(peer)), setup_(setup), wake_(stream_.get_executor()) {}

    /// Held by `self`, as long as it takes.
    asio::awaitable<void> run(std::shared_ptr<Connection> self) {
        bool goes_on = co_await shake_hands(stream_);
        while (goes_on) {
            goes_on = co_await serve_one(self);
        }
        lowest().close();
    }

private:
    static constexpr bool is_secure = std::is_same_v<Stream, SecureStream>;

    PlainStream& lowest() {
        return beast::get_lowest_layer(stream_);
    }

    /// One request. Whether another one may follow.
    asio::awaitable<bool> serve_one(std::shared_ptr<Connection> self) {
        if (buffer_.size() == 0) {
            buffer_ = {}; // an idle connection costs little, and keeps nothing of the last request
            lowest().expires_after(keep_alive_time);
            auto [failed, count] = co_await stream_.async_read_some(buffer_.prepare(4096), as_result);
            if (failed) {
                co_return false;
            }
            buffer_.commit(count);
        }
        http::request_parser<http::string_body> parser;
        parser.header_limit(header_bytes);
        parser.body_limit(setup_.body_bytes);
        const auto begin = Clock::now();
        const auto unreadable = co_await read(parser);
        if (unreadable) {
            if (const auto refusal = refusal_of(unreadable)) {
                const auto request = plain(parser.get(), peer_, is_secure);
                co_await send(request, *refusal, false, begin);
                co_await linger();
            }
            co_return false;
        }
        const bool keep_alive = parser.get().keep_alive();
        const auto request = plain(parser.release(), peer_, is_secure);
        const auto response = co_await answer(setup_, request);
        if (response.stream) {
            co_await send_events(self, request, response, begin);
            co_return false;
        }
        const bool is_sent = co_await send(request, response, keep_alive, begin);
        co_return is_sent&& keep_alive;
    }

    asio::awaitable<error_code> read(http::request_parser<http::string_body>& parser) {
        lowest().expires_after(header_time);
        auto [no_header, header_size] = co_await http::async_read_header(stream_, buffer_, parser, as_result);
        if (no_header) {
            co_return no_header;
        }
        lowest().expires_after(body_time);
        if (beast::iequals(parser.get()[http::field::expect], "100-continue")) {
            static constexpr std::string_view go_on = "HTTP/1.1 100 Continue\r\n\r\n";
            co_await asio::async_write(stream_, asio::buffer(go_on), as_result);
        }
        auto [no_body, body_size] = co_await http::async_read(stream_, buffer_, parser, as_result);
        co_return no_body;
    }

    asio::awaitable<bool> send(const HttpRequest& request, const HttpResponse& response, bool keep_alive,
                               Clock::time_point begin) {
        auto message = head_of(response, is_secure, keep_alive);
        if (response.status != 204 && response.status != 304) {
            message.content_length(response.body.size());
            message.body() = request.method == "HEAD" ? "" : response.body;
        }
        lowest().expires_after(send_time);
        const auto failed = co_await write(std::move(message));
        setup_.log.write(request, response, response.body.size(), Clock::now() - begin);
        co_return !failed;
    }

    asio::awaitable<error_code> write(http::response<http::string_body> message) {
        auto [failed, count] = co_await http::async_write(stream_, message, as_result);
        co_return failed;
    }

    asio::awaitable<void> linger() {
        error_code ignored;
        lowest().socket().shutdown(tcp::socket::shutdown_send, ignored);
        lowest().expires_after(linger_time);
        std::array<char, 65536> dropped; // NOLINT(*-member-init): never looked at
        for (std::size_t taken = 0; taken < linger_bytes;) {
            auto [failed, count] = co_await lowest().async_read_some(asio::buffer(dropped), as_result);
            if (failed) {
                break;
            }
            taken += count;
        }
    }

    asio::awaitable<void> send_events(std::shared_ptr<Connection> self, const HttpRequest& request,
                                      const HttpResponse& response, Clock::time_point begin) {
        auto& events = *response.stream;
        lowest().expires_after(event_time);
        is_gone_ = static_cast<bool>(co_await write(head_of(response, is_secure, false)));
        lowest().expires_never();
        asio::co_spawn(stream_.get_executor(), notice_departure(self), asio::detached);
        events.on_wake([this] { wake_.cancel(); });
        std::size_t bytes = 0;
        while (!is_gone_ && !events.is_over()) {
            const auto event = events.take();
            if (!event) {
                wake_.expires_at(Clock::time_point::max());
                co_await wake_.async_wait(as_result);
                continue;
            }
            static constexpr std::string_view end_of_event = "}\n\n";
            const auto end = event->text ? end_of_event : end_of_event.substr(1);
            const std::array<asio::const_buffer, 3> parts{
                asio::buffer(event->head), event->text ? asio::buffer(*event->text) : asio::const_buffer(),
                asio::buffer(end)};
            lowest().expires_after(event_time);
            auto [failed, count] = co_await asio::async_write(stream_, parts, as_result);
            is_gone_ = is_gone_ || failed;
            bytes += count;
        }
        events.on_wake({});
        setup_.log.write(request, response, bytes, Clock::now() - begin);
    }

    /// A page that is closed says so by closing the connection, or not at all.
    asio::awaitable<void> notice_departure(std::shared_ptr<Connection> self) {
        std::array<char, 64> nothing{};
        co_await self->stream_.async_read_some(asio::buffer(nothing), as_result);
        self->is_gone_ = true; // a browser has nothing to say on a stream either
        self->wake_.cancel();
    }

    Stream stream_;
    std::string peer_;
    const ConnectionSetup& setup_;
    asio::steady_timer wake_;
    beast::flat_buffer buffer_;
    bool is_gone_ = false;
};

template <class Stream>
void serve(Stream stream, std::string peer, const ConnectionSetup& setup, std::function<void()> over) {
    const auto executor = stream.get_executor();
    auto connection = std::make_shared<Connection<Stream>>(std::move(stream), std::move(peer), setup);
    asio::co_spawn(executor, connection->run(connection),
                   [over = std::move(over)](const std::exception_ptr&) { over(); });
}

} // namespace

void serve_connection(tcp::socket socket, const ConnectionSetup& setup, const std::shared_ptr<asio::ssl::context>& tls,
                      std::function<void()> over) {
    error_code gone;
    const auto peer = socket.remote_endpoint(gone).address().to_string();
    socket.set_option(tcp::no_delay(true), gone);
    if (tls) {
        // The context lives as long as connections that began with it.
        serve(SecureStream(std::move(socket), *tls), peer, setup, [tls, over = std::move(over)] { over(); });
    } else {
        serve(PlainStream(std::move(socket)), peer, setup, std::move(over));
    }
}

} // namespace xpon::gateway
