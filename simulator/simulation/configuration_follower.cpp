#include "simulator/simulation/configuration_follower.hpp"

#include "xpon/cfgdb/element_functions.hpp"
#include "xpon/peer_side/configuration_file.hpp"
#include "xpon/peer_side/elements.hpp"
#include "xpon/peer_side/running_onts.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <numeric>
#include <system_error>
#include <utility>
#include <vector>

namespace xpon::simulator {
namespace {

namespace peers = peer_side::peers;

/// What a change of an element means to the plant. What reaches ONTs, commits say themselves.
enum class Effect : std::uint8_t {
    fans,
    hostname,
    management,
    front_port,
    port_channel,
    pon_port,
};

struct Row {
    Effect effect;
    ipc::Address peer; ///< whose business it is
};

constexpr Row nothing{};
constexpr Row fans{Effect::fans, peers::system_manager};
constexpr Row hostname{Effect::hostname, peers::system_manager};
constexpr Row management{Effect::management, peers::system_manager};
constexpr Row front_port{Effect::front_port, peers::switch_chip};
constexpr Row port_channel{Effect::port_channel, peers::switch_chip};
constexpr Row pon_port{Effect::pon_port, peers::pon_state_machine};

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
    for (auto& [peer, number] : followed_) {
        number = cfgdb::running_number(database_.handle());
        read_all_of(peer);
    }
}

std::uint64_t ConfigurationFollower::running_number() const {
    return cfgdb::running_number(database_.handle());
}

std::optional<ConfigurationFollower::Followed> ConfigurationFollower::follow(ipc::Address peer, std::uint64_t number) {
    const auto found = followed_.find(peer);
    if (found == followed_.end() || found->second == number) {
        return std::nullopt;
    }
    auto& followed = found->second;
    auto since = cfgdb::running_commits_since(database_.handle(), followed);
    bool concerns_plant = !since.is_complete;
    if (since.is_complete) {
        for (const auto& commit : since.commits) {
            concerns_plant |= read_changed(peer, commit);
        }
    } else {
        read_all_of(peer);
    }
    // Only now: after a fault of the database it is tried again.
    followed = since.number;
    auto onts = onts_of(peer, since);
    return Followed{std::move(since), concerns_plant, std::move(onts)};
}

ChangedOnts ConfigurationFollower::onts_of(ipc::Address peer, const cfgdb::RunningCommits& since) {
    ChangedOnts onts;
    if (peer != peers::pon_state_machine) {
        return onts;
    }
    if (!since.is_complete) {
        const auto all = counted(max_onts);
        return {all.begin(), all.end()};
    }
    for (const auto& commit : since.commits) {
        onts.insert(commit.onts.begin(), commit.onts.end());
    }
    return onts;
}

void ConfigurationFollower::read_all_of(ipc::Address peer) {
    if (peer == peers::system_manager) {
        read_fans();
        read_hostname();
        read_management();
    } else if (peer == peers::switch_chip) {
        std::ranges::for_each(counted(front_ports), [this](auto index) { read_front_port(index); });
        std::ranges::for_each(counted(port_channels), [this](auto index) { read_port_channel(index); });
    } else {
        std::ranges::for_each(counted(pon_ports), [this](auto index) { read_pon_port(index); });
        read_onts(counted(max_onts));
    }
}

bool ConfigurationFollower::read_changed(ipc::Address peer, const cfgdb::RunningCommit& commit) {
    bool concerns_plant = false;
    if (peer == peers::pon_state_machine && !commit.onts.empty()) {
        read_onts(commit.onts);
        concerns_plant = true;
    }
    for (const auto& change : commit.changes) {
        const auto& [effect, owner] = change.element < rows.size() ? rows.at(change.element) : nothing;
        if (owner != peer) {
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
        default:
            read_pon_port(index);
        }
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
        configuration_.onts.take(index);
    }
    for (const auto& ont : onts) {
        configuration_.onts[ont.index] = ont;
    }
}

} // namespace xpon::simulator
