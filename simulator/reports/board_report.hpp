#pragma once

#include "simulator/firmware/firmware_slots.hpp"
#include "simulator/plant/plant.hpp"
#include "xpon/custom_layer/system.h"
#include "xpon/peer_side/device_facts.h"

#include <cstdint>

namespace xpon::simulator {

System_environment_data report_environment(const Plant& plant);

/// `clock_rate` as the record wants it; its time is the present one.
Device_facts report_device_facts(const Plant& plant, const FirmwareSlots& firmware, double clock_rate);

/// Whether a fault spoils what a firmware slot holds.
bool is_slot_spoilt(const Plant& plant, unsigned slot);

} // namespace xpon::simulator
