#pragma once

#include "simulator/control/event_filter.hpp"
#include "xpon/core/unique_fd.hpp"

#include <cstddef>
#include <functional>
#include <list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <poll.h>

namespace xpon::simulator {

/// The Unix socket through which testers command the plant, control.sock in the OLT's run folder: a line in, a line
/// out. For the owner alone.
class ControlSocket {
public:
    /// Takes a line without its end and gives the answer, without one. May set what events its sender is told of.
    using Command = std::function<std::string(std::string_view line, std::optional<EventFilter>& watch)>;

    /// Throws std::system_error, naming the path, when the socket cannot be made.
    explicit ControlSocket(Command command);
    ~ControlSocket();
    ControlSocket(const ControlSocket&) = delete;
    ControlSocket& operator=(const ControlSocket&) = delete;

    /// What to wait for, as for poll(), until there is something to do. Filled in by whoever waits, for serve().
    std::span<pollfd> awaited();
    /// Serves what has arrived, as the wait has found; never waits.
    void serve();
    /// Tells the clients that watch. One that does not read what it is told is cut off.
    void publish(std::span<const Event> events);

private:
    struct Client {
        core::UniqueFd socket;
        std::string received{};
        std::string to_send{};
        std::optional<EventFilter> watch{};
        bool is_readable = false;
        bool has_ended = false;   ///< it sends no more
        bool is_too_slow = false; ///< and goes
    };

    void accept_clients();
    /// False when the client is to go.
    bool serve(Client& client);
    /// The same.
    static bool send(Client& client);
    static bool may_receive(const Client& client);
    static void receive(Client& client);
    void run_commands(Client& client);

    Command command_;
    std::string path_;
    core::UniqueFd listener_;
    std::list<Client> clients_;
    std::vector<pollfd> awaited_; ///< of the listener and the clients
};

} // namespace xpon::simulator
