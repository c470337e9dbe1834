#pragma once

#include "xpon/custom_layer/device.h"
#include "xpon/custom_layer/system.h"

#include <cstdint>
#include <string_view>

namespace xpon::simulator {

// The made-up hardware of plants. No vendor, part or number is one of the world's.

/// A model of ONT.
struct OntModel {
    std::string_view equipment_id; ///< [G.988 ME 257]
    std::string_view hardware_version;
    std::string_view software_version;
    unsigned ethernet_ports;
    unsigned telephone_ports;
    bool has_router; ///< a VEIP [G.988 ME 329]
};

/// A model of optical (or copper) module.
struct ModuleModel {
    std::string_view vendor;
    std::string_view part_number;
    std::string_view revision;
    std::string_view media;
    unsigned speed_mbps;
    bool has_diagnostics;
};

/// A board, as its maker made it, and what it carries.
struct BoardModel {
    std::string_view device_type;
    std::string_view board_version;
    std::string_view serial_number;
    std::string_view mac_address;
    std::string_view device_name;
    float ram_mib;
    float disk_mib;
    float base_disk_mib; ///< used at least
    std::uint8_t fpga_version;
    std::uint8_t pld_version;
    Brd__ps_type supply_type;
    std::string_view supply_model;
    std::string_view supply_serial;
    std::string_view supply_version;
    std::string_view supply_revision;
    std::string_view supply_date;
    std::string_view firmware[2];
    std::string_view firmware_built[2];
};

} // namespace xpon::simulator
