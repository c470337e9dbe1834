#pragma once

#include <cstdint>

namespace xpon {

/// Line rates of a PON [ITU-T G.984.2], headers and error correction included.
/// @{
inline constexpr std::uint32_t gpon_downstream_kbps = 2488320;
inline constexpr std::uint32_t gpon_upstream_kbps = 1244160;
/// @}

} // namespace xpon
