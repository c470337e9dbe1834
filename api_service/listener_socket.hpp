#pragma once

#include "api_service/client_socket.hpp"
#include "api_service/core_names.hpp"
#include "xpon/core/unique_fd.hpp"

#include <cstdint>
#include <memory>
#include <string>
#include <variant>

namespace xpon::api_service {

/// A TCP port of the loopback address.
struct IpEndpoint {
    std::uint16_t port;
};

/// A Unix-domain stream socket; a path longer than 107 bytes is cut.
struct UnixEndpoint {
    std::string path;
};

/// Where to listen.
using Endpoint = std::variant<IpEndpoint, UnixEndpoint>;

/// Where clients connect.
class IListenerSocket {
public:
    IListenerSocket() = default;
    IListenerSocket(const IListenerSocket&) = delete;
    IListenerSocket& operator=(const IListenerSocket&) = delete;
    virtual ~IListenerSocket() = default;

    /// One pending connection; an error of code CommonError, with errno in its message, when there is none to have.
    virtual Result<std::shared_ptr<IClientSocket>> accept() = 0;
    [[nodiscard]] virtual int get_fd() const = 0;
};

class ListenerSocket : public IListenerSocket {
public:
    /// Opens the socket and listens. Throws std::runtime_error, naming the step and errno, when that fails.
    explicit ListenerSocket(const Endpoint& endpoint);

    Result<std::shared_ptr<IClientSocket>> accept() override;
    [[nodiscard]] int get_fd() const override;

private:
    core::UniqueFd fd_;
};

} // namespace xpon::api_service
