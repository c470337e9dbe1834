#pragma once

#include "api_service/client_socket.hpp"
#include "api_service/endpoint.hpp"
#include "xpon/core/result.hpp"
#include "xpon/core/unique_fd.hpp"

#include <memory>

namespace xpon::api_service {

/// Where clients connect.
class IListenerSocket {
public:
    IListenerSocket() = default;
    IListenerSocket(const IListenerSocket&) = delete;
    IListenerSocket& operator=(const IListenerSocket&) = delete;
    virtual ~IListenerSocket() = default;

    /// One pending connection; an error of code CommonError, with errno in its message, when there is none to have.
    virtual core::Result<std::shared_ptr<IClientSocket>> accept() = 0;
    [[nodiscard]] virtual int get_fd() const = 0;
};

class ListenerSocket : public IListenerSocket {
public:
    /// Opens the socket and listens. Throws std::runtime_error, naming the step and errno, when that fails.
    explicit ListenerSocket(const Endpoint& endpoint);

    core::Result<std::shared_ptr<IClientSocket>> accept() override;
    [[nodiscard]] int get_fd() const override;

private:
    core::UniqueFd fd_;
};

} // namespace xpon::api_service
