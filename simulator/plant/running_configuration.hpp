#pragma once

#include "simulator/plant/ont_layout.hpp"
#include "simulator/plant/ont_table.hpp"
#include "simulator/plant/optics.hpp"
#include "xpon/peer_side/running_onts.hpp"

#include <array>
#include <bitset>
#include <cstdint>
#include <set>
#include <string>

namespace xpon::simulator {

/// Bit v = VLAN v [802.1Q].
using VlanSet = std::bitset<4096>;

/// The part of the running configuration that the plant obeys.
struct FrontPortSettings {
    bool enabled = true;
    unsigned speed_mbps = 0;          ///< 0 = what the module can
    VlanSet vlans = VlanSet{}.set();  ///< carried, with or without tag
    bool is_multicast_router = false; ///< set to lead to one always [RFC 4541]

    bool operator==(const FrontPortSettings&) const = default;
};

/// [802.1AX]
struct PortChannelSettings {
    bool enabled = false;
    std::uint32_t members = 0; ///< bit n-1 = front port n
    unsigned min_links = 1;

    bool operator==(const PortChannelSettings&) const = default;
};

struct PonPortSettings {
    bool enabled = true;
    unsigned reach_min_km = 0; ///< ranging window [G.984.3]
    unsigned reach_max_km = 20;
    unsigned discovery_interval_s = 10;
    bool compares_passwords = false;
    bool downstream_fec = true;
    bool detects_rogues = true;

    bool operator==(const PonPortSettings&) const = default;
};

using OntSettings = cfgdb::RunningOnt;
using ServiceSettings = cfgdb::RunningService;

struct FanSettings {
    bool manual = false;
    unsigned manual_percent = 60;
    unsigned min_percent = 30;
    int target_temp_c = 55;

    bool operator==(const FanSettings&) const = default;
};

struct RunningConfiguration {
    std::array<FrontPortSettings, front_ports> front{};        ///< port 1 first
    std::array<PonPortSettings, pon_ports> pon{};              ///< port 1 first
    std::array<PortChannelSettings, port_channels> channels{}; ///< channel 1 first
    std::uint16_t management_vlan = 0;                         ///< of the in-band management; 0 = off
    OntTable<OntSettings> onts;
    FanSettings fans;
    std::string hostname;

    bool operator==(const RunningConfiguration&) const = default;
};

/// Flat indices from 0 of the ONTs whose settings may differ from those of before, configured or not. All else of a
/// configuration is small, and taken whole.
using ChangedOnts = std::set<std::uint16_t>;

/// What a configuration took out of force.
struct ReplacedSettings {
    std::array<PonPortSettings, pon_ports> pon{}; ///< of all ports
    OntTable<OntSettings> onts;                   ///< of those that may have changed and were configured
};

} // namespace xpon::simulator
