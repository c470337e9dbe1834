#include "simulator/simulation/configuration_follower.hpp"

#include "xpon/cfgdb/element_functions.hpp"
#include "xpon/peer_side/configuration_file.hpp"
#include "xpon/peer_side/elements.hpp"
#include "xpon/peer_side/operations.hpp"
#include "xpon/peer_side/running_onts.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <numeric>
#include <set>
#include <system_error>
#include <vector>

namespace xpon::simulator {
namespace {

namespace peers = peer_side::peers;

/// What a change of an element means to the plant.
enum class Effect : std::uint8_t {
    none,
    fans,
    hostname,
    management,
    front_port,
    port_channel,
    pon_port,
    ont,
    all_onts
};

struct Row {
    Effect effect;
    ipc::Address peer; ///< whose business it is
};

constexpr Row nothing{Effect::none, {}};
constexpr Row fans{Effect::fans, peers::system_manager};
constexpr Row hostname{Effect::hostname, peers::system_manager};
constexpr Row management{Effect::management, peers::system_manager};
constexpr Row front_port{Effect::front_port, peers::switch_chip};
constexpr Row port_channel{Effect::port_channel, peers::switch_chip};
constexpr Row pon_port{Effect::pon_port, peers::pon_state_machine};
constexpr Row one_ont{Effect::ont, peers::pon_state_machine};
constexpr Row profile{Effect::all_onts, peers::pon_state_machine};

/// By type of record.
template <class Record>
constexpr Row row_of = nothing;
template <>
constexpr Row row_of<cfgdb::GSystemFanSpeed> = fans;
template <>
constexpr Row row_of<cfgdb::GSystemHostname> = hostname;
template <>
constexpr Row row_of<cfgdb::GSystemManagement> = management;
template <>
constexpr Row row_of<cfgdb::FrontPort> = front_port;
template <>
constexpr Row row_of<cfgdb::PortChannel> = port_channel;
template <>
constexpr Row row_of<cfgdb::PonPort> = pon_port;
template <>
constexpr Row row_of<cfgdb::PonOnt> = one_ont;
template <>
constexpr Row row_of<cfgdb::OntServices> = one_ont;
template <>
constexpr Row row_of<cfgdb::OntTemplate> = profile;
template <>
constexpr Row row_of<cfgdb::ProfileOntPortsCfg> = profile;
template <>
constexpr Row row_of<cfgdb::ProfileOntCrossConnect> = profile;
template <>
constexpr Row row_of<cfgdb::ProfileOntManagementCfg> = profile;
template <>
constexpr Row row_of<cfgdb::ProfileOntDba> = profile;
template <>
constexpr Row row_of<cfgdb::ProfileOntShaping> = profile;

/// By position in the list of elements.
#define XPON_ROW(suffix, record, depth, size1, size2, path) row_of<cfgdb::record>,
constexpr std::array rows{XPON_CFGDB_ELEMENTS(XPON_ROW)};
#undef XPON_ROW

void check(int status) {
    if (status != 0) {
        throw std::system_error(errno, std::generic_category(), "The running configuration cannot be read");
    }
}

std::vector<std::uint16_t> counted(unsigned count) {
    std::vector<std::uint16_t> indices(count);
    std::iota(indices.begin(), indices.end(), std::uint16_t{0});
    return indices;
}

unsigned mbps_of(cfgdb::FrontPort::Speed speed) {
    static constexpr std::array<unsigned, 4> speeds{0, 100, 1000, 10000};
    return speeds.at(static_cast<std::size_t>(speed));
}

VlanSet carried_by(const cfgdb::FrontPort& port) {
    VlanSet vlans;
    for (std::size_t vid = 1; vid < vlans.size() - 1; ++vid) {
        vlans[vid] = vid == port.pvid || (port.tagged_vlans[vid / 8] >> vid % 8 & 1U) != 0;
    }
    return vlans;
}

} // namespace

ConfigurationFollower::ConfigurationFollower() {
    read_all();
}

void ConfigurationFollower::restart() {
    check(cfgdb::restart_from_saved_configuration(database_.handle()));
    read_all();
}

void ConfigurationFollower::read_all() {
    for (const auto peer : {peers::system_manager, peers::switch_chip, peers::pon_state_machine}) {
        reload(peer);
    }
}

void ConfigurationFollower::reload(ipc::Address peer) {
    if (peer == peers::system_manager) {
        read_fans();
        read_hostname();
        read_management();
    } else if (peer == peers::switch_chip) {
        std::ranges::for_each(counted(front_ports), [this](auto index) { read_front_port(index); });
        std::ranges::for_each(counted(port_channels), [this](auto index) { read_port_channel(index); });
    } else if (peer == peers::pon_state_machine) {
        std::ranges::for_each(counted(pon_ports), [this](auto index) { read_pon_port(index); });
        read_onts(counted(max_onts));
    }
}

bool ConfigurationFollower::follow(ipc::Address peer, std::span<const service::Config_change> changes) {
    std::set<std::uint16_t> onts;
    bool profiles_changed = false;
    bool concerns_plant = false;
    for (const auto& change : changes) {
        const auto& [effect, owner] = rows.at(change.element);
        if (effect == Effect::none || owner != peer) {
            continue;
        }
        concerns_plant = true;
        const auto index = change.indices[0];
        switch (effect) {
        case Effect::fans:
            read_fans();
            break;
        case Effect::hostname:
            read_hostname();
            break;
        case Effect::management:
            read_management();
            break;
        case Effect::port_channel:
            read_port_channel(index);
            break;
        case Effect::front_port:
            read_front_port(index);
            break;
        case Effect::pon_port:
            read_pon_port(index);
            break;
        case Effect::ont:
            onts.insert(index);
            break;
        default:
            profiles_changed = true;
        }
    }
    read_onts(std::vector(onts.begin(), onts.end()));
    if (profiles_changed) {
        read_configured_onts();
    }
    return concerns_plant;
}

void ConfigurationFollower::read_fans() {
    cfgdb::GSystemFanSpeed record;
    check(getRunDb_CommonGCfg_fan_speed(database_.handle(), &record, nullptr));
    configuration_.fans = {.manual = record.mode == cfgdb::GSystemFanSpeed::Mode::manual,
                           .manual_percent = record.manual_percent,
                           .min_percent = record.min_percent,
                           .target_temp_c = record.target_temp_c};
}

void ConfigurationFollower::read_hostname() {
    cfgdb::GSystemHostname record;
    check(getRunDb_CommonGCfg_hostname(database_.handle(), &record, nullptr));
    configuration_.hostname = record.hostname;
}

void ConfigurationFollower::read_management() {
    cfgdb::GSystemManagement record;
    check(getRunDb_CommonGCfg_management(database_.handle(), &record, nullptr));
    configuration_.management_vlan = record.enabled != 0 ? record.vlan_id : std::uint16_t{0};
}

void ConfigurationFollower::read_front_port(std::uint16_t index) {
    if (index >= front_ports) {
        return;
    }
    cfgdb::FrontPort record;
    check(getRunDb_ZebGCfg_switch_config_front_port(database_.handle(), &record, &index));
    configuration_.front.at(index) = {.enabled = record.enabled != 0,
                                      .speed_mbps = mbps_of(record.speed),
                                      .vlans = carried_by(record),
                                      .is_multicast_router =
                                          record.multicast_router == cfgdb::FrontPort::MulticastRouter::always};
}

void ConfigurationFollower::read_port_channel(std::uint16_t index) {
    if (index >= port_channels) {
        return;
    }
    cfgdb::PortChannel record;
    check(getRunDb_ZebGCfg_switch_config_lag_port_channel(database_.handle(), &record, &index));
    configuration_.channels.at(index) = {
        .enabled = record.enabled != 0, .members = record.members, .min_links = record.min_links};
}

void ConfigurationFollower::read_pon_port(std::uint16_t index) {
    if (index >= pon_ports) {
        return;
    }
    cfgdb::PonPort record;
    check(getRunDb_ZebGCfg_pon_port_state(database_.handle(), &record, &index));
    configuration_.pon.at(index) = {.enabled = record.enabled != 0,
                                    .odn_class = static_cast<OdnClass>(record.odn_class),
                                    .reach_min_km = record.reach_min_km,
                                    .reach_max_km = record.reach_max_km,
                                    .discovery_interval_s = record.discovery_interval_s,
                                    .compares_passwords = record.onu_auth == cfgdb::PonPort::OnuAuth::serial_password,
                                    .downstream_fec = record.downstream_fec != 0,
                                    .detects_rogues = record.rogue_detection != 0};
}

void ConfigurationFollower::read_onts(std::span<const std::uint16_t> indices) {
    std::vector<std::uint16_t> known;
    std::ranges::copy_if(indices, std::back_inserter(known), [](auto index) { return index < max_onts; });
    const auto onts = cfgdb::read_running_onts(database_.handle(), known);
    for (const auto index : known) {
        configuration_.onts.erase(index);
    }
    for (const auto& ont : onts) {
        configuration_.onts[ont.index] = ont;
    }
}

void ConfigurationFollower::read_configured_onts() {
    std::vector<std::uint16_t> indices;
    for (const auto& [index, settings] : configuration_.onts) {
        indices.push_back(index);
    }
    read_onts(indices);
}

} // namespace xpon::simulator
