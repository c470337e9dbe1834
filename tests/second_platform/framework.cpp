// The service framework, the logger and IPC of the second platform: one process, nothing logged, peers that are there.

#include "xpon/ipc/ipc.hpp"
#include "xpon/logger/logger.hpp"
#include "xpon/service/service_launcher.hpp"

#include <set>

#include <zlog.h>

namespace xpon {

using core::Error;
using core::ErrorPayload;
using core::Result;

namespace service {

bool ServiceBase::is_required_master_change_event() {
    return false;
}
Result<void> ServiceBaseZEB::master_change(const ServiceCtx&) {
    return core::success();
}
Result<void> ServiceBaseZEB::sync(const ServiceCtx&) {
    return core::success();
}

ServiceLauncher::ServiceLauncher(std::unique_ptr<IService>&& service, const std::shared_ptr<core::ILogger>& logger,
                                 const std::shared_ptr<ipc::IIpc>& ipc, bool is_master)
    : logger_(logger), ipc_(ipc), service_(std::move(service)), context_{is_master} {}
Result<void> ServiceLauncher::run() {
    return service_->run(context_);
}
Result<void> ServiceLauncher::stop() {
    return service_->stop(context_);
}

} // namespace service

namespace logger {

LoggerContext::LoggerContext(core::UniqueFd configuration) : configuration_(std::move(configuration)) {}
LoggerContext::~LoggerContext() {
    zlog_fini();
}

Logger::Logger(const std::string& category) : category_(zlog_get_category(category.c_str())) {}
Result<std::unique_ptr<LoggerContext>> Logger::create_context(const std::string&, const std::string&, int) {
    if (zlog_init(nullptr) != 0) { // its own configuration
        return ErrorPayload(Error::CommonError, "zlog_init");
    }
    return std::make_unique<LoggerContext>(core::UniqueFd());
}
bool Logger::is_enabled(core::LogLevel) const {
    return false;
}
void Logger::write(core::LogLevel, std::string_view, const std::source_location&) {}

} // namespace logger

namespace ipc {
namespace {

class Endpoint : public IIpc {
public:
    Result<void> connect(Address peer) override {
        return peers_.insert(peer).second ? Result<void>(core::success()) : ErrorPayload(Error::Already);
    }
    [[nodiscard]] Ipc* raw() const override {
        return nullptr;
    }

private:
    std::set<Address> peers_;
};

} // namespace

Result<std::shared_ptr<IIpc>> make_zmq_ipc(Address, const std::string&) {
    return std::make_shared<Endpoint>();
}

} // namespace ipc
} // namespace xpon
