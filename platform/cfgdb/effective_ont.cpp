#include "cfgdb/effective_ont.hpp"

#include "cfgdb/ont_number.hpp"

#include <algorithm>
#include <cstddef>
#include <set>
#include <span>

namespace xpon::cfgdb {
namespace {

template <class Record>
const serializer::Table& table_of() {
    return element(element_of<Record>).table;
}

template <class Record>
Bytes bytes_of(const Record& record) {
    return std::as_bytes(std::span(&record, 1));
}

void append(std::vector<Reference>& references, const std::vector<Reference>& more) {
    references.insert(references.end(), more.begin(), more.end());
}

OntTemplate template_of(const Records& records, const PonOnt& ont) {
    if (ont.ont_template == 0) {
        return {};
    }
    return records.running<OntTemplate>(static_cast<std::uint16_t>(ont.ont_template - 1));
}

/// Those of the ONT as a whole: what it does not choose itself comes from the template.
std::vector<Reference> references_of_ont(const PonOnt& ont, const OntTemplate& bundle) {
    auto references = own_references(table_of<PonOnt>(), bytes_of(ont));
    auto from_template = own_references(table_of<OntTemplate>(), bytes_of(bundle));
    std::erase_if(from_template, [&](const Reference& reference) {
        return std::ranges::find(references, reference.element, &Reference::element) != references.end();
    });
    append(references, from_template);
    return references;
}

template <class Profile>
std::uint8_t number_in(const std::vector<Reference>& references) {
    const auto found = std::ranges::find(references, element_of<Profile>, &Reference::element);
    return found == references.end() ? std::uint8_t{0} : found->number;
}

/// The table of the services of a template.
const serializer::Table& template_service_table() {
    const auto fields = table_of<OntTemplate>().fields;
    return *std::ranges::find(fields, offsetof(OntTemplate, services), &serializer::Field::offset)->child;
}

std::vector<Reference> references_of_service(const OntServices& own, const TemplateService& from_template) {
    switch (own.mode) {
    case OntServices::from_template:
        return own_references(template_service_table(), bytes_of(from_template));
    case OntServices::custom:
        return own_references(table_of<OntServices>(), bytes_of(own));
    default:
        return {};
    }
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
    ont.references = references_of_ont(record, bundle);
    ont.ports_profile = number_in<ProfileOntPortsCfg>(ont.references);
    ont.management_profile = number_in<ProfileOntManagementCfg>(ont.references);
    ont.shaping_profile = number_in<ProfileOntShaping>(ont.references);
    for (std::uint16_t position = 0; position < services_per_ont; ++position) {
        ont.own_services.push_back(records.running<OntServices>(index, position));
        const auto& own = ont.own_services.back();
        append(ont.references, references_of_service(own, bundle.services[position]));
        const auto profiles = profiles_of(own, bundle.services[position]);
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
