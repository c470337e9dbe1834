#include "cfgdb/checks/checks.hpp"
#include "cfgdb/checks/fault_texts.hpp"
#include "cfgdb/references.hpp"

namespace xpon::cfgdb {
namespace {

/// Every reference of the record, which stands at `where`, must lead to a record that is defined.
void check_references(const CheckContext& context, const RecordId& where) {
    const auto& table = element(where.element).table;
    for (const auto& reference : all_references(table, context.records.running(where))) {
        const auto& target = element(reference.element).table;
        if (is_defined(target, context.records.running(reference.id()))) {
            continue;
        }
        if (*target.profile_kind == '\0') {
            context.faults.add(where, fault_text::undefined_template, reference.number);
        } else {
            context.faults.add(where, fault_text::undefined_profile, target.profile_kind, reference.number);
        }
    }
}

} // namespace

void check_template_references(const CheckContext& context) {
    for (std::uint16_t position = 0; position < element(element_of<OntTemplate>).sizes[0]; ++position) {
        const auto where = id_of<OntTemplate>(position);
        if (is_defined(element(where.element).table, context.records.running(where))) {
            check_references(context, where);
        }
    }
}

void check_ont_references(const CheckContext& context) {
    for (const auto& ont : context.onts) {
        check_references(context, id_of<PonOnt>(ont.index));
        for (std::size_t position = 0; position < ont.own_services.size(); ++position) {
            if (ont.own_services[position].mode == OntServices::custom) {
                check_references(context, service_id(ont.index, position));
            }
        }
    }
}

} // namespace xpon::cfgdb
