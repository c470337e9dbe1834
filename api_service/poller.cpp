#include "api_service/poller.hpp"

#include "api_service/freed_memory.hpp"
#include "xpon/core/guard.hpp"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <tuple>
#include <utility>

#include <sys/resource.h>

namespace xpon::api_service {
namespace {

// Out of descriptors a listener stays readable for ever; leaving it alone for a while keeps the loop from spinning.
constexpr std::chrono::seconds pause_after_failed_accept{1};

constexpr std::chrono::seconds between_lines_of_refusals{1};

/// The first descriptor that a client may not have. What serving takes (connections to peers, files, PAM's modules) is
/// kept back.
int end_of_client_descriptors() {
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    const auto end = std::min<rlim_t>(limit.rlim_cur, std::numeric_limits<int>::max());
    return static_cast<int>(end - std::min<rlim_t>(64, end / 4));
}

// Nothing wakes poll() once a peer has taken an answer: "writable" says only that there is room for some more.
constexpr std::chrono::milliseconds longest_wait_with_unsent_answers{20};

// Connecting costs a client less than a turn costs the loop. One of a crowd that is accepted one a turn finds the queue
// of the listener full and tries again after a second.
constexpr int most_accepted_at_once = 64;

// So long the loop rests when memory lacks for its own work: what was not served stays ready.
constexpr std::chrono::milliseconds rest_without_memory{20};

} // namespace

Poller::Poller(const std::shared_ptr<ILogger>& logger, std::unique_ptr<IListenerSocket> listener)
    : logger_(logger), listener_(std::move(listener)) {}

Poller::~Poller() {
    clients_.clear();
}

Result<std::vector<std::shared_ptr<IClientSocket>>> Poller::poll(std::chrono::milliseconds timeout) {
    std::vector<std::shared_ptr<IClientSocket>> ready;
    const bool is_new_round = next_ >= fds_.size();
    const auto prepared = core::guarded(*logger_, [&]() -> Result<void> {
        if (is_new_round) {
            collect_descriptors();
        }
        ready.reserve(std::min(clients_.size(), most_returned)); // who was read must be returned
        return core::success();
    });
    if (!prepared) {
        ::poll(nullptr, 0, static_cast<int>(rest_without_memory.count()));
        return ready;
    }
    if (is_new_round) {
        BOOST_OUTCOME_TRY(const bool is_woken, wait(timeout));
        if (!is_woken) {
            return ready;
        }
    }
    for (; next_ < fds_.size() && ready.size() < most_returned; ++next_) {
        if (fds_[next_].revents == 0) {
            continue; // of hundreds of clients mostly few have sent something
        }
        if (auto client = serve(fds_[next_])) {
            ready.push_back(std::move(client));
        }
    }
    if (next_ == fds_.size() && (fds_.front().revents & POLLIN) != 0) {
        accept_clients();
    }
    return ready;
}

Result<bool> Poller::wait(std::chrono::milliseconds timeout) {
    next_ = fds_.size();
    if (!held_back_.empty()) {
        timeout = std::min(timeout, longest_wait_with_unsent_answers);
    }
    const int count = ::poll(fds_.data(), fds_.size(), static_cast<int>(timeout.count()));
    if (count < 0) {
        const int cause = std::exchange(errno, 0);
        if (cause == EINTR) {
            return false;
        }
        log_error(*logger_, "poll() returned {}", count);
        return ErrorPayload(Error::CommonError, fmt::format("poll() failed: {}", cause));
    }
    next_ = 1;
    return true;
}

void Poller::collect_descriptors() {
    const bool accepting = !accept_again_ || Clock::now() >= *accept_again_;
    if (accepting) {
        accept_again_.reset();
    }
    const auto released = std::erase_if(held_back_, [this](int fd) {
        const auto client = clients_.find(fd);
        return client == clients_.end() || client->second->takes_requests();
    });
    if (released > 0 || fds_are_old_) {
        list_descriptors();
    }
    fds_.front().fd = accepting ? listener_->get_fd() : -1; // poll() passes over a negative descriptor
}

void Poller::list_descriptors() {
    fds_are_old_ = true; // also when there is no memory
    fds_.clear();
    fds_.push_back({.fd = -1, .events = POLLIN | POLLERR, .revents = 0});
    for (const auto& [fd, client] : clients_) {
        const auto awaited = held_back_.contains(fd) ? short{POLLERR} : short{POLLIN | POLLERR};
        fds_.push_back({.fd = fd, .events = awaited, .revents = 0});
    }
    fds_are_old_ = false;
}

std::shared_ptr<IClientSocket> Poller::serve(const pollfd& entry) {
    std::shared_ptr<IClientSocket> ready;
    const auto& client = clients_.at(entry.fd);
    const bool has_sent = (entry.revents & POLLIN) != 0;
    if (has_sent && !client->takes_requests()) {
        std::ignore = core::guarded(*logger_, [&]() -> Result<void> {
            held_back_.insert(entry.fd);
            fds_are_old_ = true;
            return core::success();
        });
    } else if (has_sent) {
        const auto read = core::guarded(*logger_, [&] {
            auto outcome = client->read_data();
            if (!outcome && outcome.error().code == Error::Overflow) {
                log_error(*logger_, "A client sends faster than it is served: {}", outcome.error().to_string());
            }
            return outcome;
        });
        if (!read) {
            close_client(entry.fd);
            return nullptr;
        }
        if (client->get_frames_left() > 0) {
            ready = client;
        }
    }
    if ((entry.revents & POLLERR) != 0) {
        close_client(entry.fd);
        return nullptr;
    }
    return ready;
}

void Poller::close_client(int fd) {
    core::log(*logger_, core::LogLevel::Debug, "Closing socket {}", fd);
    auto client = clients_.extract(fd);
    fds_are_old_ = true;
    const auto bytes = client.mapped()->get_bytes_waiting();
    client.mapped().reset();
    give_back_freed_memory(bytes);
}

void Poller::accept_clients() {
    pollfd more{.fd = listener_->get_fd(), .events = POLLIN, .revents = 0};
    for (int left = most_accepted_at_once; accept_client() && --left > 0 && ::poll(&more, 1, 0) > 0;) {
    }
}

bool Poller::accept_client() {
    core::log(*logger_, core::LogLevel::Debug, "Incoming connection");
    const auto accepted = core::guarded(*logger_, [this]() -> Result<void> {
        auto accepted_client = listener_->accept();
        if (!accepted_client) {
            log_error(*logger_, "{}", accepted_client.error().to_string());
            return accepted_client.error();
        }
        auto client = std::move(accepted_client).value();
        const int fd = client->get_fd();
        if (fd >= end_of_client_descriptors()) {
            refuse_client();
            return core::success(); // which closes it
        }
        clients_.insert_or_assign(fd, std::move(client));
        fds_are_old_ = true;
        return core::success();
    });
    if (!accepted) {
        accept_again_ = Clock::now() + pause_after_failed_accept;
    }
    return accepted.has_value();
}

void Poller::refuse_client() {
    ++refused_;
    if (const auto now = Clock::now(); now >= tell_refused_again_) {
        tell_refused_again_ = now + between_lines_of_refusals;
        log_error(*logger_, "Too many connections, {} closed", std::exchange(refused_, 0));
    }
}

} // namespace xpon::api_service
