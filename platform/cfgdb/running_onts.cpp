#include "xpon/peer_side/running_onts.hpp"

#include "cfgdb/database.hpp"
#include "cfgdb/effective_ont.hpp"
#include "serializer/stamp.hpp"

#include <algorithm>
#include <cstddef>
#include <map>

namespace xpon::cfgdb {
namespace {

using serializer::Stamp;

void add_profiles(Stamp& stamp, const Records& records, const EffectiveOnt& ont) {
    for (const auto& reference : ont.references) {
        if (reference.element == element_of<OntTemplate>) {
            continue; // what an ONT gets by its template is there itself
        }
        stamp.add(static_cast<std::int64_t>(reference.element));
        stamp.add(std::int64_t{reference.number});
        stamp.add(Bytes(without_labels(element(reference.element).table, records.running(reference.id()))));
    }
}

std::uint64_t provision_of(const Records& records, const EffectiveOnt& ont, bool upstream_fec) {
    Stamp stamp;
    add_profiles(stamp, records, ont);
    for (const auto& service : ont.services) {
        const auto& own = ont.own_services[service.position];
        for (const std::int64_t number : std::initializer_list<std::int64_t>{
                 service.position, service.cross_connect, service.dba, service.s_vid, service.c_vid, own.mac_limit,
                 own.downstream_kbps, own.upstream_kbps, own.static_ip}) {
            stamp.add(number);
        }
        stamp.add(std::as_bytes(std::span(own.subscriber_id)));
    }
    stamp.add(std::int64_t{upstream_fec});
    stamp.add(std::as_bytes(std::span(ont.record.lines)));
    return stamp.value();
}

/// The lower of two rates, of which 0 is no limit.
std::uint32_t lower(std::uint32_t one, std::uint32_t other) {
    return one == 0 ? other : other == 0 ? one : std::min(one, other);
}

/// A profile by its number from 1. No profile, 0, is a place where nothing is stored: the defaults.
template <class Profile>
Profile profile_of(const Records& records, std::uint8_t number) {
    return records.running<Profile>(static_cast<std::uint16_t>(number - 1));
}

RunningService service_of(const EffectiveService& service, const OntServices& own, const ShapingQueue& queue,
                          const ProfileOntDba& dba) {
    const auto& profile = service.profile;
    return {.number = static_cast<std::uint8_t>(service.position + 1),
            .tcont = 0,
            .type = profile.service_type,
            .termination = profile.termination,
            .uni_ports = profile.uni_ports,
            .uni_vid = profile.uni_vid,
            .s_vid = service.s_vid,
            .c_vid = service.c_vid,
            .multicast_vid = profile.multicast_vid,
            .igmp_snooping = profile.igmp_snooping != 0,
            .dhcp_agent = profile.dhcp_agent != 0,
            .pppoe_agent = profile.pppoe_agent != 0,
            .broadcast_downstream = profile.broadcast_downstream != 0,
            .source_guard = profile.source_guard != 0,
            .mac_limit = own.mac_limit != 0 ? static_cast<std::uint8_t>(own.mac_limit) : profile.mac_limit,
            .static_ip = own.static_ip,
            .downstream_kbps = lower(own.downstream_kbps, queue.max_kbps),
            .upstream_kbps = lower(lower(own.upstream_kbps, queue.upstream_max_kbps), dba.maximum_kbps)};
}

std::vector<RunningService> services_of(const Records& records, const EffectiveOnt& ont,
                                        const ProfileOntShaping& shaping) {
    std::vector<RunningService> services;
    std::map<std::uint8_t, std::uint8_t> shared_tconts;
    std::uint8_t tconts = 0;
    for (const auto& service : ont.services) {
        // Without a profile a service gets the default one, whose T-CONT is shared.
        const auto dba = profile_of<ProfileOntDba>(records, service.dba);
        const bool is_shared = dba.shared != 0;
        const auto known = shared_tconts.find(service.dba);
        const bool joins = is_shared && known != shared_tconts.end();
        const auto& queue = shaping.queues[service.profile.priority % std::size(shaping.queues)];
        auto& added = services.emplace_back(service_of(service, ont.own_services[service.position], queue, dba));
        added.tcont = joins ? known->second : tconts++;
        if (is_shared) {
            shared_tconts.emplace(service.dba, added.tcont);
        }
    }
    return services;
}

bool has_upstream_fec(const Records& records, const PonOnt& ont) {
    if (ont.upstream_fec != PonOnt::from_template || ont.ont_template == 0) {
        return ont.upstream_fec != PonOnt::off;
    }
    return records.running<OntTemplate>(static_cast<std::uint16_t>(ont.ont_template - 1)).upstream_fec != 0;
}

std::vector<RunningGroupRange> groups_of(const ProfileOntPortsCfg& ports) {
    std::vector<RunningGroupRange> ranges;
    for (const auto& range : std::span(ports.multicast_ranges, ports.multicast_ranges_count)) {
        ranges.push_back({.first = range.first, .last = range.last});
    }
    return ranges;
}

std::array<RunningUserPort, std::size(ProfileOntPortsCfg{}.eth)> user_ports_of(const ProfileOntPortsCfg& ports) {
    std::array<RunningUserPort, std::size(ProfileOntPortsCfg{}.eth)> user_ports;
    std::ranges::transform(ports.eth, user_ports.begin(), [](const OntEthernetPort& port) {
        return RunningUserPort{.enabled = port.enabled != 0, .mac_limit = port.mac_limit};
    });
    return user_ports;
}

RunningOnt running_ont(const Records& records, std::uint16_t index, const PonOnt& record) {
    const auto effective = evaluate_ont(records, index, record);
    const bool upstream_fec = has_upstream_fec(records, record);
    const auto shaping = profile_of<ProfileOntShaping>(records, effective.shaping_profile);
    const auto ports = profile_of<ProfileOntPortsCfg>(records, effective.ports_profile);
    const auto management = profile_of<ProfileOntManagementCfg>(records, effective.management_profile);
    auto services = services_of(records, effective, shaping);
    unsigned tconts = 0;
    for (const auto& service : services) {
        tconts = std::max(tconts, service.tcont + 1U);
    }
    return {.index = index,
            .serial = record.serial,
            .enabled = record.enabled != 0,
            .upstream_fec = upstream_fec,
            .password = record.password,
            .services = std::move(services),
            .tconts = static_cast<std::uint8_t>(tconts),
            .downstream_kbps = shaping.downstream_kbps,
            .upstream_kbps = shaping.upstream_kbps,
            .pm_collection = management.pm_collection != 0,
            .immediate_leave = ports.immediate_leave != 0,
            .max_groups = ports.max_groups,
            .max_multicast_kbps = ports.max_multicast_kbps,
            .groups = groups_of(ports),
            .igmp_version = ports.igmp_version,
            .user_ports = user_ports_of(ports),
            .has_router = ports.veip_enabled != 0,
            .has_telephone = std::ranges::any_of(ports.pots, [](auto enabled) { return enabled != 0; }),
            .expected_equipment_id = record.expected_equipment_id,
            .provision = provision_of(records, effective, upstream_fec)};
}

void read_slice(const Environment& environment, std::span<const std::uint16_t> indices, std::vector<RunningOnt>& onts) {
    const ReadTransaction transaction(environment);
    const Records records(transaction);
    for (const auto index : indices) {
        const auto record = records.running<PonOnt>(index);
        if (record.serial != 0) {
            onts.push_back(running_ont(records, index, record));
        }
    }
}

} // namespace

std::vector<RunningOnt> read_running_onts(const void* db, std::span<const std::uint16_t> indices) {
    // What a transaction sees is kept for it, whatever others write meanwhile: a few milliseconds are enough.
    static constexpr std::size_t most_at_once = 64;
    const auto& environment = database_of(db).environment();
    std::vector<RunningOnt> onts;
    while (!indices.empty()) {
        const auto count = std::min(indices.size(), most_at_once);
        read_slice(environment, indices.first(count), onts);
        indices = indices.subspan(count);
    }
    return onts;
}

} // namespace xpon::cfgdb
