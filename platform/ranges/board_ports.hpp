#pragma once

#include <cstdint>

namespace xpon::ranges {

/// Ports of the board, as the board device says; 16 of either kind while there is no device. A device that answered
/// once is not asked again.
std::uint32_t board_pon_ports();
std::uint32_t board_uplink_ports();

} // namespace xpon::ranges
