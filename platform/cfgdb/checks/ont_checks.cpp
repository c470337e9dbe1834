#include "cfgdb/checks/checks.hpp"
#include "cfgdb/checks/fault_texts.hpp"
#include "cfgdb/ont_number.hpp"

#include <algorithm>
#include <bit>
#include <iterator>

namespace xpon::cfgdb {
namespace {

using Profile = ProfileOntCrossConnect;

/// The lowest Ethernet port on which both services would take the same frames; 0 = none.
int shared_port(const Profile& left, const Profile& right) {
    const auto is_on_ports = [](const Profile& profile) {
        return profile.termination == Profile::Termination::bridge &&
               profile.service_type != Profile::ServiceType::iptv;
    };
    const bool takes_same = left.uni_match == Profile::UniMatch::any || right.uni_match == Profile::UniMatch::any ||
                            (left.uni_match == right.uni_match && left.uni_vid == right.uni_vid);
    const auto ports = left.uni_ports & right.uni_ports;
    return is_on_ports(left) && is_on_ports(right) && takes_same && ports != 0 ? std::countr_zero(ports) + 1 : 0;
}

bool has_service_of(const EffectiveOnt& ont, Profile::ServiceType type) {
    return std::ranges::any_of(ont.services,
                               [&](const EffectiveService& service) { return service.profile.service_type == type; });
}

bool has_telephone_port(const CheckContext& context, const EffectiveOnt& ont) {
    if (ont.ports_profile == 0) {
        return false;
    }
    const auto ports = context.records.running<ProfileOntPortsCfg>(static_cast<std::uint16_t>(ont.ports_profile - 1));
    return ports.name[0] != '\0' && std::ranges::any_of(ports.pots, [](std::uint8_t enabled) { return enabled != 0; });
}

} // namespace

void check_serials(const CheckContext& context) {
    for (const auto serial : context.touched.serials) {
        const auto onts = context.index.onts_with_serial(serial);
        for (std::size_t i = 1; i < onts.size(); ++i) {
            const auto owner = ont_number(onts.front());
            context.faults.add(id_of<PonOnt>(onts[i]), fault_text::serial_taken, owner.pon_port, owner.ont);
        }
    }
}

void check_vlan_pairs(const CheckContext& context) {
    for (const auto& ont : context.onts) {
        for (const auto& service : ont.services) {
            if (service.profile.vlan_model == Profile::VlanModel::one_to_one && service.c_vid == 0) {
                context.faults.add(service_id(ont.index, service.position), fault_text::no_c_vlan);
            }
        }
    }
    for (const auto& pair : context.touched.vlan_pairs) {
        const auto services = context.index.services_with(pair);
        for (std::size_t i = 1; i < services.size(); ++i) {
            const auto& [owner_index, owner_position] = services.front();
            const auto owner = ont_number(owner_index);
            context.faults.add(service_id(services[i].first, services[i].second), fault_text::pair_taken, pair.first,
                               pair.second, owner.pon_port, owner.ont, owner_position + 1);
        }
    }
}

void check_service_clashes(const CheckContext& context) {
    for (const auto& ont : context.onts) {
        for (auto later = ont.services.begin(); later != ont.services.end(); ++later) {
            const auto where = service_id(ont.index, later->position);
            for (auto earlier = ont.services.begin(); earlier != later; ++earlier) {
                if (const int port = shared_port(earlier->profile, later->profile)) {
                    context.faults.add(where, fault_text::clash_on_port, earlier->position + 1, later->position + 1,
                                       port);
                }
                if (earlier->profile.termination == later->profile.termination && earlier->s_vid == later->s_vid &&
                    earlier->c_vid == later->c_vid) {
                    context.faults.add(where, fault_text::same_vlans, earlier->position + 1, later->position + 1);
                }
            }
        }
    }
}

void check_service_needs(const CheckContext& context) {
    for (const auto& ont : context.onts) {
        for (const auto& service : ont.services) {
            const auto where = service_id(ont.index, service.position);
            if (service.profile.service_type == Profile::ServiceType::voip && !has_telephone_port(context, ont)) {
                context.faults.add(where, fault_text::no_telephone_port);
            }
            if (service.profile.service_type == Profile::ServiceType::management && ont.management_profile == 0) {
                context.faults.add(where, fault_text::no_management_profile);
            }
        }
        for (std::size_t line = 0; line < std::size(ont.record.lines); ++line) {
            if (ont.record.lines[line].enabled != 0 && !has_service_of(ont, Profile::ServiceType::voip)) {
                context.faults.add(id_of<PonOnt>(ont.index), fault_text::no_voice_service, line + 1);
            }
        }
    }
}

} // namespace xpon::cfgdb
