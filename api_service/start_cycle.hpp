#pragma once

#include "api_service/core_names.hpp"
#include "api_service/signals.hpp"
#include "xpon/ipc/ipc.hpp"
#include "xpon/logger/logger.hpp"
#include "xpon/service/service.hpp"
#include "xpon/service/service_launcher.hpp"

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace xpon::api_service {

/// How a start cycle ended.
enum class CycleEnd {
    stopped, ///< asked to stop: the process exits with status 0
    restart, ///< asked to build everything afresh
    failed,  ///< reported to systemd: the process exits with status 1
};

/// One life of the service, from the logging context to its shutdown. Members are destroyed from the last to the
/// first: launcher, IPC, logger, logging context.
class StartCycle {
public:
    /// Starts the service and runs it until it is stopped, reporting every stage to systemd.
    CycleEnd run();

private:
    /// What systemd is told when a stage failed; nothing when it succeeded.
    using Failure = std::optional<std::string>;

    /// A step of the start. The texts are the statuses for exceptions: {} is the exception's what().
    struct Stage {
        Failure (StartCycle::*start)();
        std::string_view exception_status;
        std::string_view unknown_exception_status;
    };
    static const Stage stages[];

    Failure start_logging();
    Failure start_ipc();
    Failure start_service();
    Failure start_launcher();
    Failure accept_signals();
    Failure start_custom_layer();

    Failure run_stage(const Stage& stage);
    CycleEnd run_service();

    std::unique_ptr<logger::LoggerContext> logger_context_;
    std::shared_ptr<ILogger> logger_;
    std::shared_ptr<ipc::IIpc> ipc_;
    std::unique_ptr<service::IService> service_; ///< until the launcher takes it over
    std::unique_ptr<service::ServiceLauncher> launcher_;
    std::atomic<bool> stop_for_good_{false}; ///< the stop came from SIGTERM or SIGINT, not from SIGHUP
    std::optional<SignalActions> signal_actions_;
};

} // namespace xpon::api_service
