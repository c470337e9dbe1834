#pragma once

#include "api_service/client_socket.hpp"
#include "api_service/core_names.hpp"
#include "api_service/listener_socket.hpp"

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include <poll.h>

namespace xpon::api_service {

/// Waits for the clients.
class IPoller {
public:
    IPoller() = default;
    IPoller(const IPoller&) = delete;
    IPoller& operator=(const IPoller&) = delete;
    virtual ~IPoller() = default;

    /// Waits up to `timeout` and returns the clients that received data now and hold a complete frame, ordered by
    /// descriptor. Of a crowd it returns `most_returned`; the next calls go on behind them, without waiting, until all
    /// have had their turn.
    virtual Result<std::vector<std::shared_ptr<IClientSocket>>> poll(std::chrono::milliseconds timeout) = 0;

    /// What the kernel and the service keep of so many connections is still in the processor's cache when they are
    /// answered.
    static constexpr std::size_t most_returned = 16;
};

class Poller : public IPoller {
public:
    Poller(const std::shared_ptr<ILogger>& logger, std::unique_ptr<IListenerSocket> listener);
    ~Poller() override;

    /// A signal that interrupts the wait makes it return nothing, early.
    Result<std::vector<std::shared_ptr<IClientSocket>>> poll(std::chrono::milliseconds timeout) override;

private:
    using Clock = std::chrono::steady_clock;

    void collect_descriptors();
    /// False when a signal came first.
    Result<bool> wait(std::chrono::milliseconds timeout);
    void list_descriptors();
    /// The client when it received data and holds a frame.
    std::shared_ptr<IClientSocket> serve(const pollfd& entry);
    void close_client(int fd);
    void accept_clients();
    /// False when the listener is to be left alone for a while.
    bool accept_client();
    void refuse_client();

    std::shared_ptr<ILogger> logger_;
    std::unique_ptr<IListenerSocket> listener_;
    /// The map and the results of one poll are the only owners of a client, and a client is the only owner of its
    /// descriptor: whoever lets go last closes it, once.
    std::map<int, std::shared_ptr<IClientSocket>> clients_;
    std::vector<pollfd> fds_; ///< the listener's, then the clients', as long as those are the same
    bool fds_are_old_ = true;
    std::size_t next_ = 0; ///< of fds_, to be looked at; behind the last one a new round begins
    /// Clients that have sent more without having taken their answer; they are left alone until they have.
    std::set<int> held_back_;
    std::optional<Clock::time_point> accept_again_; ///< the listener is left alone until then
    int refused_ = 0;                               ///< connections closed at once, not logged yet
    Clock::time_point tell_refused_again_;
};

} // namespace xpon::api_service
