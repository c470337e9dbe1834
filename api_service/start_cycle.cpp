#include "api_service/start_cycle.hpp"

#include "api_service/api_service.hpp"
#include "api_service/peers.hpp"
#include "xpon/custom_layer/custom_layer.h"

#include <exception>
#include <tuple>
#include <utility>

#include <systemd/sd-daemon.h>
#include <zlog.h>

namespace xpon::api_service {
namespace {

constexpr const char* log_configuration = "/etc/zlog_modules_config/API-SERVICE.conf";
constexpr const char* log_category = "API-SERV";
constexpr const char* change_log_category = "API-SERV_CHANGES";
constexpr const char* ipc_log_category = "API-SERV_IPC";
constexpr IpEndpoint api_endpoint{.port = 9999};

/// Sends one notification to the service manager. Without one (NOTIFY_SOCKET unset) nothing happens.
void notify_systemd(const std::string& message) {
    sd_notify(0, message.c_str());
}

} // namespace

const StartCycle::Stage StartCycle::stages[] = {
    {&StartCycle::start_logging, "STATUS=Exception on create log subsystem: {}.",
     "STATUS=Unknown exception on create log subsystem."},
    {&StartCycle::start_ipc, "STATUS=Exception on create IPC subsystem: {}.", "STATUS=Error on create IPC subsystem."},
    {&StartCycle::start_service, "STATUS=Exception on create api-service: {}.", "STATUS=Error on create api-service."},
    {&StartCycle::start_launcher, "STATUS=Exception on create Service Launcher: {}.",
     "STATUS=Error on create Service Launcher."},
    {&StartCycle::accept_signals, "STATUS=Exception on create Service Launcher: {}.",
     "STATUS=Error on create Service Launcher."},
    {&StartCycle::start_custom_layer, "STATUS=custom_layer__init() failed: {}", "STATUS=custom_layer__init() failed"},
};

CycleEnd StartCycle::run() {
    notify_systemd("STATUS=Startup web manager...");
    for (const auto& stage : stages) {
        if (const auto failure = run_stage(stage)) {
            notify_systemd(*failure);
            return CycleEnd::failed;
        }
    }
    return run_service();
}

StartCycle::Failure StartCycle::run_stage(const Stage& stage) {
    try {
        return (this->*stage.start)();
    } catch (const std::exception& exception) {
        return fmt::format(fmt::runtime(stage.exception_status), exception.what());
    } catch (...) {
        return std::string(stage.unknown_exception_status);
    }
}

StartCycle::Failure StartCycle::start_logging() {
    auto context = logger::Logger::create_context(log_configuration, log_category, 0);
    if (!context) {
        return "STATUS=Unable to create logging context.";
    }
    logger_context_ = std::move(context).value();
    logger_ = std::make_shared<logger::Logger>(log_category);
    return std::nullopt;
}

StartCycle::Failure StartCycle::start_ipc() {
    auto made = ipc::make_zmq_ipc(own_address, ipc_log_category);
    if (!made) {
        return fmt::format("STATUS=Exception on create IPC subsystem: {}.", made.error().to_string());
    }
    ipc_ = std::move(made).value();
    for (const auto& peer : peers) {
        if (const auto connected = ipc_->connect(peer.address); !connected) {
            return fmt::format(fmt::runtime(peer.failure_status), connected.error().to_string());
        }
    }
    return std::nullopt;
}

StartCycle::Failure StartCycle::start_service() {
    auto service = std::make_unique<ApiService>(ipc_, logger_, api_endpoint);
    service->log_changes_to(std::make_shared<logger::Logger>(change_log_category));
    service_ = std::move(service);
    return std::nullopt;
}

StartCycle::Failure StartCycle::start_launcher() {
    launcher_ = std::make_unique<service::ServiceLauncher>(std::move(service_), logger_, ipc_, true);
    return std::nullopt;
}

StartCycle::Failure StartCycle::accept_signals() {
    signal_actions_.emplace(
        [this] {
            stop_for_good_ = true;
            std::ignore = launcher_->stop();
        },
        [this] { std::ignore = launcher_->stop(); });
    return std::nullopt;
}

StartCycle::Failure StartCycle::start_custom_layer() {
    auto* const category = zlog_get_category(log_category);
    if (category == nullptr) {
        return "STATUS=Can't create zlog category for custom-layer";
    }
    if (const int status = custom_layer__init(category); status != 0) {
        return fmt::format("STATUS=custom_layer__init() failed: {}", status);
    }
    return std::nullopt;
}

CycleEnd StartCycle::run_service() {
    notify_systemd("READY=1\nSTATUS=Processing requests...\nWATCHDOG=1\n");
    const auto ended = launcher_->run();
    notify_systemd("STATUS=Shutdown api-service...\nSTOPPING=1\n");
    signal_actions_.reset();
    if (!ended) {
        notify_systemd(fmt::format("STATUS=Error while running api-service with {}", ended.error().to_string()));
        return CycleEnd::failed;
    }
    return stop_for_good_ ? CycleEnd::stopped : CycleEnd::restart;
}

} // namespace xpon::api_service
