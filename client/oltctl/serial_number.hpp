#pragma once

#include "xpon/client/serial_number.hpp"

namespace xpon::oltctl {

// The library has them, because other programs show ONTs, too; within oltctl they go by these names.
using client::parse_serial;
using client::serial_text;

} // namespace xpon::oltctl
