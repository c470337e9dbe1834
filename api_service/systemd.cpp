#include "api_service/systemd.hpp"

#include <systemd/sd-daemon.h>

namespace xpon::api_service {

void notify_systemd(const std::string& message) {
    sd_notify(0, message.c_str());
}

} // namespace xpon::api_service
