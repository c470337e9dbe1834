#pragma once

#include <cstdint>

namespace xpon::api_service {

/// How many PON ports the board has. Asked of "/dev/board" until it answers, then remembered for the life of the
/// process. 0 while the board cannot be read; errno is left clear.
std::uint8_t board_pon_port_count();

/// The same for the front (uplink) ports.
std::uint8_t board_front_port_count();

} // namespace xpon::api_service
