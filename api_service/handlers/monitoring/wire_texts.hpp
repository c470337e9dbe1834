#pragma once

#include "api_service/core_names.hpp"
#include "api_service/protocol/shape.hpp"
#include "xpon/custom_layer/subscribers.h"

#include <cstdint>
#include <span>
#include <string>

// How answers write the addresses and ports of subscribers' traffic.

namespace xpon::api_service {

/// "02:53:49:03:10:0A", from the bytes in the order of the wire.
std::string mac_text(std::span<const std::uint8_t, 6> mac);

/// "10.0.0.1", from the bytes in the order of the wire.
std::string ipv4_text(std::span<const std::uint8_t, 4> address);

/// "pon-port 1/3", or "CPU", which has no number. A kind of port that there is not is an error.
inline constexpr Shape switch_port_shape{.form = Shape::Form::text,
                                         .pattern = "^(CPU|(front-port|pon-port|port-channel) [0-9]+/[0-9]+)$"};
Result<std::string> switch_port_text(Switch_port_kind kind, std::uint8_t unit, std::uint8_t number);

} // namespace xpon::api_service
