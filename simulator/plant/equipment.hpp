#pragma once

#include "simulator/plant/optics.hpp"
#include "xpon/custom_layer/device.h"
#include "xpon/custom_layer/system.h"

#include <cstdint>
#include <string>

namespace xpon::simulator {

// The hardware of plants. That of the plants that come along is made up: no vendor, part or number is one of the
// world's.

/// A model of ONT.
struct OntModel {
    std::string equipment_id; ///< [G.988 ME 257]
    std::string hardware_version;
    std::string software_version;
    std::uint32_t vendor = 0; ///< vendor id, its first letter on top [G.984.3 9.2]
    unsigned ethernet_ports = 1;
    unsigned telephone_ports = 0;
    bool has_router = false; ///< a VEIP [G.988 ME 329]
};

/// A model of optical (or copper) module.
struct ModuleModel {
    std::string vendor;
    std::string part_number;
    std::string revision;
    std::string media;
    unsigned speed_mbps = 0;
    bool has_diagnostics = true;
    OdnClass odn_class = OdnClass::b_plus; ///< of one for a PON port
};

/// A board, as its maker made it, and what it carries.
struct BoardModel {
    std::string device_type;
    std::string board_version;
    std::string serial_number;
    std::string mac_address;
    std::string device_name;
    float ram_mib = 0;
    float disk_mib = 0;
    float base_disk_mib = 0; ///< used at least
    std::uint8_t fpga_version = 0;
    std::uint8_t pld_version = 0;
    Brd__ps_type supply_type = brd__ps_ac;
    std::string supply_model;
    std::string supply_serial;
    std::string supply_version;
    std::string supply_revision;
    std::string supply_date;
    std::string firmware[2];
    std::string firmware_built[2];
};

} // namespace xpon::simulator
