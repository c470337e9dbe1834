#pragma once

#include "xpon/peer_side/device_facts.h"

#include <optional>

namespace xpon::simulator {

/// Replaces the file from which the device's own facts are read. It stays when the simulator ends: a device knows who
/// it is without its daemons. Throws std::system_error when it cannot be written.
void write_device_facts(const Device_facts& facts);

/// What was written last since the run folder was emptied, which is what a start of the machine does to it.
std::optional<Device_facts> read_device_facts();

} // namespace xpon::simulator
