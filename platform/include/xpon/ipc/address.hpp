#pragma once

#include <compare>
#include <cstdint>

namespace xpon::ipc {

/// The address of a daemon: the service number in the upper 16 bits, the instance in the lower 16.
struct Address {
    std::uint32_t value = 0;

    auto operator<=>(const Address&) const = default;
};

} // namespace xpon::ipc
