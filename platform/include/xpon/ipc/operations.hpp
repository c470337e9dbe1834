#pragma once

#include <cstdint>

namespace xpon::ipc {

/// The operations that peers understand, one number space for all of them.
enum class Operation : std::uint16_t {
    hello = 1,
    /// Notice: an array of service::Config_change, what a commit changed in the running configuration.
    configuration_changed = 2,
};

} // namespace xpon::ipc
