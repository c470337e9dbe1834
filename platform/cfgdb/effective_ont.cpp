#include "cfgdb/effective_ont.hpp"

#include "cfgdb/ont_number.hpp"

#include <algorithm>
#include <set>

namespace xpon::cfgdb {
namespace {

template <class Profile>
void add_reference(EffectiveOnt& ont, std::uint8_t number) {
    if (number != 0) {
        ont.references.push_back({element_of<Profile>, number});
    }
}

OntTemplate template_of(const Records& records, const PonOnt& ont) {
    if (ont.ont_template == 0) {
        return {};
    }
    return records.running<OntTemplate>(static_cast<std::uint16_t>(ont.ont_template - 1));
}

/// The profiles of a service before they are looked up; no cross-connect profile: no service.
TemplateService profiles_of(const OntServices& own, const TemplateService& from_template) {
    switch (own.mode) {
    case OntServices::from_template:
        return from_template;
    case OntServices::custom:
        return {own.cross_connect, own.dba};
    default:
        return {};
    }
}

void add_service(EffectiveOnt& ont, const Records& records, std::uint16_t position, const TemplateService& profiles) {
    const auto& own = ont.own_services[position];
    const auto profile =
        records.running<ProfileOntCrossConnect>(static_cast<std::uint16_t>(profiles.cross_connect - 1));
    if (profile.name[0] == '\0') {
        return;
    }
    ont.services.push_back({.position = position,
                            .cross_connect = profiles.cross_connect,
                            .dba = profiles.dba,
                            .overrides_s_vid = own.s_vid != 0,
                            .s_vid = own.s_vid != 0 ? own.s_vid : profile.s_vid,
                            .c_vid = own.c_vid != 0 ? own.c_vid : profile.c_vid,
                            .profile = profile});
}

std::uint64_t sum_guaranteed(const EffectiveOnt& ont, const Records& records) {
    std::uint64_t sum = 0;
    std::set<std::uint8_t> shared;
    for (const auto& service : ont.services) {
        if (service.dba == 0) {
            continue;
        }
        const auto dba = records.running<ProfileOntDba>(static_cast<std::uint16_t>(service.dba - 1));
        if (dba.shared == 0 || shared.insert(service.dba).second) {
            sum += dba.fixed_kbps + dba.assured_kbps;
        }
    }
    return sum;
}

} // namespace

EffectiveOnt evaluate_ont(const Records& records, std::uint16_t index, const PonOnt& record) {
    EffectiveOnt ont{};
    ont.index = index;
    ont.record = record;
    const auto bundle = template_of(records, record);
    const auto choose = [](std::uint8_t own, std::uint8_t from_template) { return own != 0 ? own : from_template; };
    ont.ports_profile = choose(record.ports_profile, bundle.ports_profile);
    ont.management_profile = choose(record.management_profile, bundle.management_profile);
    ont.shaping_profile = choose(record.shaping_profile, bundle.shaping_profile);
    add_reference<OntTemplate>(ont, record.ont_template);
    add_reference<ProfileOntPortsCfg>(ont, ont.ports_profile);
    add_reference<ProfileOntManagementCfg>(ont, ont.management_profile);
    add_reference<ProfileOntShaping>(ont, ont.shaping_profile);
    for (std::uint16_t position = 0; position < services_per_ont; ++position) {
        ont.own_services.push_back(records.running<OntServices>(index, position));
        const auto profiles = profiles_of(ont.own_services.back(), bundle.services[position]);
        add_reference<ProfileOntCrossConnect>(ont, profiles.cross_connect);
        add_reference<ProfileOntDba>(ont, profiles.dba);
        if (profiles.cross_connect != 0) {
            add_service(ont, records, position, profiles);
        }
    }
    std::ranges::sort(ont.references);
    const auto repeats = std::ranges::unique(ont.references);
    ont.references.erase(repeats.begin(), repeats.end());
    ont.guaranteed_kbps = sum_guaranteed(ont, records);
    return ont;
}

} // namespace xpon::cfgdb
