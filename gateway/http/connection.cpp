#include "gateway/http/connection.hpp"

#include "gateway/as_result.hpp"
#include "gateway/events/event_stream.hpp"
#include "gateway/http/request_rules.hpp"
#include "gateway/http/transport.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <chrono>
#include <ctime>
#include <optional>
#include <string>
#include <utility>

#include <boost/asio/awaitable.hpp>
#include <boost/asio/buffer.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/beast/core/buffers_to_string.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/read_size.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/rfc7230.hpp>
#include <boost/beast/http/string_body.hpp>
#include <fmt/chrono.h>

namespace xpon::gateway {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
using asio::ip::tcp;
using boost::system::error_code;
using Clock = std::chrono::steady_clock;
using Parser = http::request_parser<http::string_body>;

constexpr std::uint32_t header_bytes = 16 * 1024;
constexpr std::size_t most_at_once = 65536; ///< bytes of one reading
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

/// The lines in front of the body. Of a stream no length is known; its end is that of the connection.
std::string head_of(const HttpResponse& response, bool is_secure, bool keep_alive) {
    http::response<http::empty_body> message;
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
    if (!response.stream && response.status != 204 && response.status != 304) {
        message.content_length(response.body.size());
    }
    const http::fields::writer lines(message, message.version(), message.result_int());
    return beast::buffers_to_string(lines.get());
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

/// One browser's connection. g++ 12 miscompiles a conditional in the same expression as co_await: none stands there.
class Connection : public std::enable_shared_from_this<Connection> {
public:
    Connection(std::unique_ptr<Transport> transport, std::string peer, const ConnectionSetup& setup)
        : transport_(std::move(transport)), peer_(std::move(peer)), setup_(setup), wake_(lowest().get_executor()) {}

    /// Held by `self`, as long as it takes.
    asio::awaitable<void> run(std::shared_ptr<Connection> self) {
        lowest().expires_after(handshake_time);
        bool goes_on = !co_await transport_->open();
        while (goes_on) {
            goes_on = co_await serve_one(self);
        }
        lowest().close();
    }

private:
    beast::tcp_stream& lowest() {
        return transport_->lowest();
    }

    /// One request. Whether another one may follow.
    asio::awaitable<bool> serve_one(std::shared_ptr<Connection> self) {
        if (buffer_.size() == 0) {
            buffer_ = {}; // an idle connection costs little, and keeps nothing of the last request
            lowest().expires_after(keep_alive_time);
            const auto [failed, count] = co_await transport_->read_some(buffer_.prepare(4096));
            if (failed) {
                co_return false;
            }
            buffer_.commit(count);
        }
        Parser parser;
        parser.header_limit(header_bytes);
        parser.body_limit(setup_.body_bytes);
        const auto begin = Clock::now();
        const auto unreadable = co_await read(parser);
        if (unreadable) {
            if (const auto refusal = refusal_of(unreadable)) {
                const auto request = plain(parser.get(), peer_, transport_->is_secure());
                co_await send(request, *refusal, false, begin);
                co_await linger();
            }
            co_return false;
        }
        const bool keep_alive = parser.get().keep_alive();
        const auto request = plain(parser.release(), peer_, transport_->is_secure());
        const auto response = co_await answer(setup_, request);
        if (response.stream) {
            co_await send_events(self, request, response, begin);
            co_return false;
        }
        const bool is_sent = co_await send(request, response, keep_alive, begin);
        co_return is_sent&& keep_alive;
    }

    asio::awaitable<error_code> read(Parser& parser) {
        lowest().expires_after(header_time);
        parser.eager(false);
        if (const auto no_header = co_await read_until(parser, &Parser::is_header_done)) {
            co_return no_header;
        }
        lowest().expires_after(body_time);
        if (beast::iequals(parser.get()[http::field::expect], "100-continue")) {
            static constexpr std::string_view go_on = "HTTP/1.1 100 Continue\r\n\r\n";
            co_await transport_->write(asio::buffer(go_on));
        }
        parser.eager(true);
        co_return co_await read_until(parser, &Parser::is_done);
    }

    /// What has come beyond that stays in the buffer.
    asio::awaitable<error_code> read_until(Parser& parser, bool (Parser::*is_reached)() const) {
        while (!(parser.*is_reached)()) {
            error_code error = http::error::need_more;
            if (buffer_.size() > 0) {
                buffer_.consume(parser.put(buffer_.data(), error));
            }
            if (error == http::error::need_more) {
                error = co_await read_more(parser);
            }
            if (error) {
                co_return error;
            }
        }
        co_return error_code();
    }

    asio::awaitable<error_code> read_more(Parser& parser) {
        const auto [failed, count] =
            co_await transport_->read_some(buffer_.prepare(beast::read_size(buffer_, most_at_once)));
        buffer_.commit(count);
        if (failed != asio::error::eof) {
            co_return failed;
        }
        error_code unfinished = http::error::end_of_stream;
        if (parser.got_some()) {
            parser.put_eof(unfinished);
        }
        co_return unfinished;
    }

    asio::awaitable<bool> send(const HttpRequest& request, const HttpResponse& response, bool keep_alive,
                               Clock::time_point begin) {
        const auto head = head_of(response, transport_->is_secure(), keep_alive);
        const bool has_body = request.method != "HEAD" && response.status != 204 && response.status != 304;
        const auto body = has_body ? asio::buffer(response.body) : asio::const_buffer();
        lowest().expires_after(send_time);
        const auto [failed, count] = co_await transport_->write(asio::buffer(head), body);
        setup_.log.write(request, response, response.body.size(), Clock::now() - begin);
        co_return !failed;
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
        const auto head = head_of(response, transport_->is_secure(), false);
        lowest().expires_after(event_time);
        is_gone_ = static_cast<bool>((co_await transport_->write(asio::buffer(head))).failed);
        lowest().expires_never();
        asio::co_spawn(lowest().get_executor(), notice_departure(self), asio::detached);
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
            const auto text = event->text ? asio::buffer(*event->text) : asio::const_buffer();
            lowest().expires_after(event_time);
            const auto [failed, count] = co_await transport_->write(asio::buffer(event->head), text, asio::buffer(end));
            is_gone_ = is_gone_ || failed;
            bytes += count;
        }
        events.on_wake({});
        setup_.log.write(request, response, bytes, Clock::now() - begin);
    }

    /// A page that is closed says so by closing the connection, or not at all.
    asio::awaitable<void> notice_departure(std::shared_ptr<Connection> self) {
        std::array<char, 64> nothing{};
        co_await self->transport_->read_some(asio::buffer(nothing));
        self->is_gone_ = true; // a browser has nothing to say on a stream either
        self->wake_.cancel();
    }

    std::unique_ptr<Transport> transport_;
    std::string peer_;
    const ConnectionSetup& setup_;
    asio::steady_timer wake_;
    beast::flat_buffer buffer_;
    bool is_gone_ = false;
};

} // namespace

void serve_connection(tcp::socket socket, const ConnectionSetup& setup, std::shared_ptr<asio::ssl::context> tls,
                      std::function<void()> over) {
    error_code gone;
    const auto peer = socket.remote_endpoint(gone).address().to_string();
    socket.set_option(tcp::no_delay(true), gone);
    const auto executor = socket.get_executor();
    const auto connection =
        std::make_shared<Connection>(make_transport(std::move(socket), std::move(tls)), peer, setup);
    asio::co_spawn(executor, connection->run(connection),
                   [over = std::move(over)](const std::exception_ptr&) { over(); });
}

} // namespace xpon::gateway
