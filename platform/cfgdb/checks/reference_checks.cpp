#include "cfgdb/checks/checks.hpp"
#include "cfgdb/checks/fault_texts.hpp"

namespace xpon::cfgdb {
namespace {

class References {
public:
    References(const CheckContext& context, const RecordId& where) : context_(context), where_(where) {}

    template <class Profile>
    void check(const char* kind, std::uint8_t number) const {
        if (number != 0 && !is_defined<Profile>(number)) {
            context_.faults.add(where_, fault_text::undefined_profile, kind, number);
        }
    }

    void check_template(std::uint8_t number) const {
        if (number != 0 && !is_defined<OntTemplate>(number)) {
            context_.faults.add(where_, fault_text::undefined_template, number);
        }
    }

    template <class Owner>
    void check_service(const Owner& service) const {
        check<ProfileOntCrossConnect>("cross-connect", service.cross_connect);
        check<ProfileOntDba>("dba", service.dba);
    }

    template <class Owner>
    void check_profiles(const Owner& owner) const {
        check<ProfileOntPortsCfg>("ports", owner.ports_profile);
        check<ProfileOntManagementCfg>("management", owner.management_profile);
        check<ProfileOntShaping>("shaping", owner.shaping_profile);
    }

private:
    template <class Profile>
    [[nodiscard]] bool is_defined(std::uint8_t number) const {
        return context_.records.running<Profile>(static_cast<std::uint16_t>(number - 1)).name[0] != '\0';
    }

    const CheckContext& context_;
    RecordId where_;
};

} // namespace

void check_template_references(const CheckContext& context) {
    for (std::uint16_t position = 0; position < element(element_of<OntTemplate>).sizes[0]; ++position) {
        const auto bundle = context.records.running<OntTemplate>(position);
        if (bundle.name[0] == '\0') {
            continue;
        }
        const References references(context, id_of<OntTemplate>(position));
        references.check_profiles(bundle);
        for (const auto& service : bundle.services) {
            references.check_service(service);
        }
    }
}

void check_ont_references(const CheckContext& context) {
    for (const auto& ont : context.onts) {
        const References references(context, id_of<PonOnt>(ont.index));
        references.check_template(ont.record.ont_template);
        references.check_profiles(ont.record);
        for (std::size_t position = 0; position < ont.own_services.size(); ++position) {
            if (ont.own_services[position].mode == OntServices::custom) {
                References(context, service_id(ont.index, position)).check_service(ont.own_services[position]);
            }
        }
    }
}

} // namespace xpon::cfgdb
