#include "gateway/daemon/daemon_link.hpp"

#include "gateway/as_result.hpp"
#include "xpon/client/frame.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <deque>
#include <exception>
#include <utility>
#include <vector>

#include <sys/socket.h>

#include <boost/asio/awaitable.hpp>
#include <boost/asio/buffer.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/error.hpp>
#include <boost/beast/core/tcp_stream.hpp>

namespace xpon::gateway {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::beast::tcp_stream;
using Clock = std::chrono::steady_clock;

// The daemon serves one request at a time: more connections only keep a slow request from holding up their queue.
constexpr std::size_t connections = 6;
constexpr std::size_t for_background = 2; ///< of these
constexpr std::size_t most_answer_bytes = 64UL << 20U;
constexpr auto first_pause = std::chrono::milliseconds(50); ///< between attempts to connect
constexpr auto longest_pause = std::chrono::milliseconds(1000);
constexpr auto connect_timeout = std::chrono::seconds(5);

/// What never ends but by an exception takes the program with it, which is started anew then: better than to go on
/// without a way to the daemon.
void end_program(const std::exception_ptr& failure) {
    if (failure) {
        std::rethrow_exception(failure);
    }
}

/// Whether nothing has come and the other end is still there.
bool is_quiet(tcp_stream& stream) {
    char byte = 0;
    const auto count = recv(stream.socket().native_handle(), &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    return count < 0 && (errno == EAGAIN || errno == EINTR);
}

} // namespace

class DaemonLink::Impl : public std::enable_shared_from_this<Impl> {
public:
    Impl(asio::io_context& context, std::uint16_t port)
        : context_(context), endpoint_(asio::ip::address_v4::loopback(), port), watched_(context), wake_(context) {
        wake_.expires_at(Clock::time_point::max());
    }

    void start(std::function<void()> changed) {
        changed_ = std::move(changed);
        asio::co_spawn(context_, watch(shared_from_this()), end_program);
        for (std::size_t i = 0; i < connections; ++i) {
            asio::co_spawn(context_, serve(shared_from_this(), i < for_background), end_program);
        }
    }

    void ask(Question question) {
        if (!up_ || (question.incarnation != 0 && question.incarnation != incarnation_)) {
            const auto trouble = up_ ? Trouble::restarted : Trouble::unreachable;
            asio::post(context_, [done = std::move(question.done), trouble] {
                done({.answer = {}, .trouble = trouble, .incarnation = 0});
            });
            return;
        }
        (question.background ? background_ : waiting_).push_back(std::move(question));
        wake_.cancel(); // one that has nothing to do takes it
    }

    void drop_overdue() {
        const auto now = Clock::now();
        for (auto* queue : {&waiting_, &background_}) {
            for (auto& question : std::exchange(*queue, {})) {
                if (question.deadline <= now) {
                    question.done({.answer = {}, .trouble = Trouble::busy, .incarnation = 0});
                } else {
                    queue->push_back(std::move(question));
                }
            }
        }
    }

    [[nodiscard]] bool is_up() const {
        return up_;
    }
    [[nodiscard]] Incarnation incarnation() const {
        return incarnation_;
    }

private:
    /// Keeps the connection that carries nothing.
    static asio::awaitable<void> watch(std::shared_ptr<Impl> self) {
        asio::steady_timer pause(self->context_);
        auto wait = first_pause;
        while (true) {
            self->watched_.expires_after(connect_timeout);
            auto [failed] = co_await self->watched_.async_connect(self->endpoint_, as_result);
            if (!failed) {
                wait = first_pause;
                self->watched_.expires_never();
                ++self->incarnation_;
                self->set_up(true);
                std::array<char, 16> nothing{};
                co_await self->watched_.async_read_some(asio::buffer(nothing), as_result);
                self->set_up(false);
            }
            self->watched_.close();
            pause.expires_after(wait);
            co_await pause.async_wait(as_result);
            wait = std::min(2 * wait, longest_pause);
        }
    }

    void set_up(bool up) {
        up_ = up;
        for (auto* queue : {&waiting_, &background_}) {
            for (auto& question : std::exchange(*queue, {})) {
                question.done({.answer = {}, .trouble = Trouble::unreachable, .incarnation = 0});
            }
        }
        changed_();
    }

    /// One connection, and the requests that it carries.
    static asio::awaitable<void> serve(std::shared_ptr<Impl> self, bool takes_background) {
        tcp_stream stream(self->context_);
        Incarnation connected_to = 0; // incarnation
        while (true) {
            auto question = self->next(takes_background);
            if (!question) {
                co_await self->wake_.async_wait(as_result);
                continue;
            }
            if (question->deadline <= Clock::now()) {
                question->done({.answer = {}, .trouble = Trouble::busy, .incarnation = 0});
                continue;
            }
            if (connected_to != self->incarnation_ || !stream.socket().is_open() || !is_quiet(stream)) {
                stream.close();
                connected_to = self->incarnation_;
                stream.expires_at(question->deadline);
                auto [failed] = co_await stream.async_connect(self->endpoint_, as_result);
                // This connection leads to the daemon that the other one, which is older, still leads to.
                if (failed || connected_to != self->incarnation_ || !self->up_ || !is_quiet(self->watched_)) {
                    stream.close();
                    question->done({.answer = {}, .trouble = Trouble::unreachable, .incarnation = 0});
                    continue;
                }
                boost::system::error_code ignored;
                stream.socket().set_option(tcp::no_delay(true), ignored);
            }
            auto reply = co_await exchange(stream, *question);
            reply.incarnation = connected_to;
            if (!reply.answer) {
                stream.close(); // what still comes would be taken for the answer to something else
            }
            question->done(std::move(reply));
        }
    }

    std::optional<Question> next(bool takes_background) {
        for (auto* queue : {&waiting_, &background_}) {
            if (!queue->empty() && (queue == &waiting_ || takes_background)) {
                std::optional question(std::move(queue->front()));
                queue->pop_front();
                return question;
            }
        }
        return std::nullopt;
    }

    static asio::awaitable<Reply> exchange(tcp_stream& stream, const Question& question) {
        const auto trouble_of = [](const boost::system::error_code& error) {
            return error == boost::beast::error::timeout ? Trouble::timed_out : Trouble::lost;
        };
        const auto frame = client::make_frame(question.text);
        stream.expires_at(question.deadline);
        auto [unsent, sent] = co_await asio::async_write(stream, asio::buffer(frame), as_result);
        if (unsent) {
            co_return Reply{.answer = {}, .trouble = trouble_of(unsent), .incarnation = 0};
        }
        client::FrameReader reader;
        std::vector<char> buffer(65536);
        while (true) {
            auto [failed, count] = co_await stream.async_read_some(asio::buffer(buffer), as_result);
            if (failed || reader.size() > most_answer_bytes) {
                co_return Reply{.answer = {}, .trouble = trouble_of(failed), .incarnation = 0};
            }
            reader.append({buffer.data(), count});
            if (auto answer = reader.next()) {
                co_return Reply{.answer = std::move(answer), .trouble = {}, .incarnation = 0};
            }
        }
    }

    asio::io_context& context_;
    tcp::endpoint endpoint_;
    tcp_stream watched_;
    asio::steady_timer wake_; // never expires; cancelled for those that wait for requests
    std::function<void()> changed_;
    std::deque<Question> waiting_;
    std::deque<Question> background_;
    bool up_ = false;
    Incarnation incarnation_ = 0;
};

DaemonLink::DaemonLink(asio::io_context& context, std::uint16_t port) : impl_(std::make_shared<Impl>(context, port)) {}

DaemonLink::~DaemonLink() = default;

void DaemonLink::start(std::function<void()> changed) {
    impl_->start(std::move(changed));
}

void DaemonLink::ask(Question question) {
    impl_->ask(std::move(question));
}

void DaemonLink::drop_overdue() {
    impl_->drop_overdue();
}

bool DaemonLink::is_up() const {
    return impl_->is_up();
}

Incarnation DaemonLink::incarnation() const {
    return impl_->incarnation();
}

} // namespace xpon::gateway
