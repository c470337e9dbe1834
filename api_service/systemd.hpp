#pragma once

#include <string>

namespace xpon::api_service {

/// Sends one notification to the service manager. Without one (NOTIFY_SOCKET unset) nothing happens.
void notify_systemd(const std::string& message);

} // namespace xpon::api_service
