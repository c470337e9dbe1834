#pragma once

#include "xpon/custom_layer/device_facts.h"

namespace xpon::simulator {

/// Replaces the file from which the device's own facts are read. It stays when the simulator ends: a device knows who
/// it is without its daemons. Throws std::system_error when it cannot be written.
void write_device_facts(const Device_facts& facts);

} // namespace xpon::simulator
