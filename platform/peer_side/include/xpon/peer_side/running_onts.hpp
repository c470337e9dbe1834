#pragma once

#include "xpon/cfgdb/records/profile_ont_cross_connect.hpp"
#include "xpon/cfgdb/records/profile_ont_ports.hpp"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace xpon::cfgdb {

/// A service that an ONT gets: that of its template or its own, with the overrides of its own record applied. Rates
/// of 0 are no limit.
struct RunningService {
    std::uint8_t number = 0; ///< 1 to 8
    std::uint8_t tcont = 0;  ///< which of the ONT's T-CONTs carries it, from 0 by first use
    ProfileOntCrossConnect::ServiceType type = ProfileOntCrossConnect::ServiceType::data;
    ProfileOntCrossConnect::Termination termination = ProfileOntCrossConnect::Termination::bridge;
    std::uint32_t uni_ports = 0; ///< bit n-1 = Ethernet port n; of a bridged one
    std::uint16_t uni_vid = 0;   ///< 0 = untagged
    std::uint16_t s_vid = 0;
    std::uint16_t c_vid = 0;         ///< 0 = one tag
    std::uint16_t multicast_vid = 0; ///< 0 = none
    bool igmp_snooping = false;
    bool dhcp_agent = false;
    bool pppoe_agent = false;
    bool broadcast_downstream = true;
    bool source_guard = false;         ///< sources without lease, session or fixed address are dropped
    std::uint8_t mac_limit = 0;        ///< 0 = no limit
    std::uint32_t static_ip = 0;       ///< 0 = none
    std::uint32_t downstream_kbps = 0; ///< the lowest of the service's own limit and its queue's
    std::uint32_t upstream_kbps = 0;   ///< the same, and of what its T-CONT may be granted

    bool operator==(const RunningService&) const = default;
};

/// The Ethernet port of an ONT.
struct RunningUserPort {
    bool enabled = true;
    std::uint8_t mac_limit = 0; ///< 0 = no limit

    bool operator==(const RunningUserPort&) const = default;
};

/// Multicast addresses from one to the other, as numbers.
struct RunningGroupRange {
    std::uint32_t first = 0;
    std::uint32_t last = 0;

    bool operator==(const RunningGroupRange&) const = default;
};

/// A configured ONT as it is to run.
struct RunningOnt {
    std::uint16_t index = 0; ///< flat, from 0
    std::uint64_t serial = 0;
    bool enabled = true;
    bool upstream_fec = true;
    std::string password{};
    std::vector<RunningService> services{}; ///< ascending by number
    std::uint8_t tconts = 0;
    std::uint32_t downstream_kbps = 0; ///< limits of the whole ONT; 0 = none
    std::uint32_t upstream_kbps = 0;
    bool pm_collection = true;               ///< 15-minute counters are collected
    bool immediate_leave = true;             ///< of multicast groups
    std::uint8_t max_groups = 0;             ///< multicast groups at a time; 0 = no limit
    std::uint32_t max_multicast_kbps = 0;    ///< of all groups at a time; 0 = no limit
    std::vector<RunningGroupRange> groups{}; ///< those allowed; empty = all
    ProfileOntPortsCfg::IgmpVersion igmp_version = ProfileOntPortsCfg::IgmpVersion::v3;
    std::array<RunningUserPort, 4> user_ports{}; ///< Ethernet port 1 first
    bool has_router = true;                      ///< the virtual port of its routed side is enabled
    bool has_telephone = true;                   ///< one telephone port at least is enabled
    std::string expected_equipment_id{};         ///< empty = any model
    /// Changes when, and nearly only when, the data that the ONT is provided with does; names and descriptions are
    /// not such data. The same in every process of one release.
    std::uint64_t provision = 0;

    bool operator==(const RunningOnt&) const = default;
};

/// The configured ones of the ONTs with these flat indices, in their order. Each is of one moment, but not all are of
/// the same: who compares the number of the last commit before and after knows. `db` comes from a CfgDbWrapper. Throws
/// std::system_error for a fault of the database.
std::vector<RunningOnt> read_running_onts(const void* db, std::span<const std::uint16_t> indices);

} // namespace xpon::cfgdb
