#pragma once

#include "xpon/core/logger.hpp"
#include "xpon/core/result.hpp"
#include "xpon/ipc/ipc.hpp"
#include "xpon/service/service.hpp"

#include <atomic>
#include <memory>

namespace xpon::service {

/// Runs one service until it ends or is asked to stop.
class ServiceLauncher {
public:
    /// `is_master`: whether this controller is in charge from the start. Throws std::invalid_argument without a
    /// service or a logger; `ipc` may be empty.
    ServiceLauncher(std::unique_ptr<IService>&& service, const std::shared_ptr<core::ILogger>& logger,
                    const std::shared_ptr<ipc::IIpc>& ipc, bool is_master);

    /// Blocks until the service returns, and returns its result. An exception that leaves the service becomes an
    /// error of code Exception that carries its text. A stop asked for before `run` makes it return at once.
    core::Result<void> run();

    /// Asks the service to stop. Safe to call from a signal handler.
    core::Result<void> stop();

private:
    std::shared_ptr<core::ILogger> logger_;
    std::shared_ptr<ipc::IIpc> ipc_;
    std::unique_ptr<IService> service_;
    ServiceCtx context_;
    std::atomic<bool> stop_requested_{false};
};

} // namespace xpon::service
