#pragma once

#include "xpon/core/result.hpp"
#include "xpon/ipc/address.hpp"

#include <string>

namespace xpon::ipc {

/// The Unix socket on which the daemon at `address` is reached. CommonError when OLT_ROOT is so deep that the path
/// does not fit into a socket address.
core::Result<std::string> socket_path(Address address);

/// "0x0019fffe", as logs and errors name a peer.
std::string to_text(Address address);

} // namespace xpon::ipc
