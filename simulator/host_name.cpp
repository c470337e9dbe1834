#include "simulator/host_name.hpp"

#include <cerrno>
#include <stdexcept>
#include <system_error>

#include <sys/stat.h>

#include <unistd.h>

namespace xpon::simulator {
namespace {

/// The namespace with which the machine booted: a constant of the kernel's interface (PROC_UTS_INIT_INO).
constexpr ino_t machines_own = 0xeffffffe;

} // namespace

HostName::HostName(bool is_applied) : is_applied_(is_applied) {
    struct stat status{};
    if (is_applied && (::stat("/proc/self/ns/uts", &status) != 0 || status.st_ino == machines_own)) {
        throw std::runtime_error("--apply-hostname would change the name of this machine; start the simulator and the "
                                 "daemon in a UTS namespace of their own, as scripts/run --apply-hostname does");
    }
}

void HostName::follow(const std::string& configured) {
    if (!is_applied_ || configured == last_) {
        return;
    }
    if (::sethostname(configured.c_str(), configured.size()) != 0) {
        throw std::system_error(errno, std::generic_category(), "The host name cannot be set to " + configured);
    }
    last_ = configured;
}

} // namespace xpon::simulator
