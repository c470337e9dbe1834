#include "tests/system/isolation.hpp"

#include <fstream>
#include <string>

#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/socket.h>

#include <net/if.h>
#include <sched.h>
#include <unistd.h>

namespace xpon::test {
namespace {

bool write_file(const char* path, const std::string& text) {
    return static_cast<bool>(std::ofstream(path) << text << std::flush);
}

bool enter_namespaces() {
    const auto user = std::to_string(getuid());
    const auto group = std::to_string(getgid());
    if (unshare(CLONE_NEWNET | CLONE_NEWNS) == 0) {
        return true;
    }
    return unshare(CLONE_NEWUSER | CLONE_NEWNET | CLONE_NEWNS) == 0 && write_file("/proc/self/setgroups", "deny") &&
           write_file("/proc/self/uid_map", "0 " + user + " 1") &&
           write_file("/proc/self/gid_map", "0 " + group + " 1");
}

bool bring_loopback_up() {
    const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq request{.ifr_ifrn = {.ifrn_name = "lo"}, .ifr_ifru = {}};
    request.ifr_flags = IFF_UP;
    const bool up = ioctl(descriptor, SIOCSIFFLAGS, &request) == 0;
    close(descriptor);
    return up;
}

} // namespace

bool isolate_this_process() {
    static const bool isolated =
        enter_namespaces() && bring_loopback_up() && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    return isolated;
}

} // namespace xpon::test
