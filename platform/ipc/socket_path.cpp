#include "ipc/socket_path.hpp"

#include "xpon/peer_side/olt_root.hpp"

#include <cstddef>

#include <sys/un.h>

#include <fmt/format.h>

namespace xpon::ipc {

core::Result<std::string> socket_path(Address address) {
    static constexpr std::size_t longest = sizeof(sockaddr_un::sun_path) - 1;
    auto path = below_olt_root(fmt::format("/run/ipc/{:08x}", address.value));
    if (path.size() > longest) {
        return core::ErrorPayload(core::Error::CommonError,
                                  fmt::format("{}: a path of {} bytes, where a Unix socket can have {} at most; choose "
                                              "a shorter OLT_ROOT",
                                              path, path.size(), longest));
    }
    return path;
}

std::string to_text(Address address) {
    return fmt::format("{:#010x}", address.value);
}

} // namespace xpon::ipc
