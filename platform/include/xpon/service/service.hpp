#pragma once

#include "xpon/core/result.hpp"
#include "xpon/service/config_change.hpp"

#include <condition_variable>
#include <functional>
#include <vector>

namespace xpon::service {

/// What the framework tells a service with every call.
struct ServiceCtx {
    /// True on the controller that is in charge; a device with one controller is always its own master.
    bool is_master = true;
};

/// A service as its launcher sees it.
class IService {
public:
    virtual core::Result<void> run(const ServiceCtx& context) = 0;
    /// Asks `run` to return soon. Called from signal handlers: only async-signal-safe work here.
    virtual core::Result<void> stop(const ServiceCtx& context) = 0;
    virtual core::Result<void> master_change(const ServiceCtx& context) = 0;
    virtual core::Result<void> config_change(const ServiceCtx& context, const std::vector<Config_change>& changes) = 0;
    virtual core::Result<void> sync(const ServiceCtx& context) = 0;
    virtual bool is_required_master_change_event() = 0;
    virtual ~IService() = default;
};

/// State that the framework keeps in every service.
class ServiceBase : public IService {
public:
    ServiceBase() = default;
    ServiceBase(const ServiceBase&) = delete;
    ServiceBase& operator=(const ServiceBase&) = delete;
    ~ServiceBase() override = default;

    bool is_required_master_change_event() override;

private:
    std::condition_variable wake_up_;
    std::vector<std::function<void()>> callbacks_;
};

/// The base of services of this device family, which keep no state that a second controller would need.
class ServiceBaseZEB : public ServiceBase {
public:
    core::Result<void> master_change(const ServiceCtx& context) override;
    core::Result<void> sync(const ServiceCtx& context) override;
};

} // namespace xpon::service
