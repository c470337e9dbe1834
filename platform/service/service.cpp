#include "xpon/service/service.hpp"

namespace xpon::service {

bool ServiceBase::is_required_master_change_event() {
    return false;
}

core::Result<void> ServiceBaseZEB::master_change(const ServiceCtx&) {
    return core::success();
}

core::Result<void> ServiceBaseZEB::sync(const ServiceCtx&) {
    return core::success();
}

} // namespace xpon::service
