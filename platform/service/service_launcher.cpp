#include "xpon/service/service_launcher.hpp"

#include "xpon/core/guard.hpp"

#include <stdexcept>
#include <utility>

namespace xpon::service {

// `stop` runs inside signal handlers, where a lock could deadlock.
static_assert(std::atomic<bool>::is_always_lock_free);

ServiceLauncher::ServiceLauncher(std::unique_ptr<IService>&& service, const std::shared_ptr<core::ILogger>& logger,
                                 const std::shared_ptr<ipc::IIpc>& ipc, bool is_master)
    : logger_(logger), ipc_(ipc), service_(std::move(service)), context_{.is_master = is_master} {
    if (!service_ || !logger_) {
        throw std::invalid_argument("a service launcher needs a service and a logger");
    }
}

core::Result<void> ServiceLauncher::run() {
    return core::guarded(*logger_, [this]() -> core::Result<void> {
        if (stop_requested_.load(std::memory_order_acquire)) {
            return core::success();
        }
        return service_->run(context_);
    });
}

core::Result<void> ServiceLauncher::stop() {
    stop_requested_.store(true, std::memory_order_release);
    return service_->stop(context_);
}

} // namespace xpon::service
