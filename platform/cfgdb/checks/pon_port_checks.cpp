#include "cfgdb/checks/checks.hpp"
#include "cfgdb/checks/fault_texts.hpp"
#include "cfgdb/ont_number.hpp"
#include "xpon/peer_side/gpon_rates.hpp"

#include <set>

namespace xpon::cfgdb {
namespace {

void check_limit(const CheckContext& context, std::uint16_t pon_port) {
    const auto load = context.index.load_of(pon_port);
    const auto limit = context.records.running<PonPort>(pon_port).ont_limit;
    if (load.onts > limit) {
        context.faults.add(id_of<PonPort>(pon_port), fault_text::too_many_onts, load.onts, limit);
    }
}

bool needs_passwords(const CheckContext& context, std::uint16_t pon_port) {
    return context.records.running<PonPort>(pon_port).onu_auth == PonPort::OnuAuth::serial_password;
}

void check_password(const CheckContext& context, std::uint16_t index, const PonOnt& ont) {
    if (ont.serial != 0 && ont.enabled != 0 && ont.password[0] == '\0') {
        context.faults.add(id_of<PonOnt>(index), fault_text::no_password);
    }
}

/// All ONTs of a port whose rules changed.
void check_passwords(const CheckContext& context, std::uint16_t pon_port) {
    for (std::uint16_t ont = 0; needs_passwords(context, pon_port) && ont < onts_per_pon_port; ++ont) {
        const auto index = static_cast<std::uint16_t>(pon_port * onts_per_pon_port + ont);
        check_password(context, index, context.records.running<PonOnt>(index));
    }
}

} // namespace

void check_guaranteed_bandwidth(const CheckContext& context) {
    for (const auto pon_port : context.touched.pon_ports) {
        const auto sum = context.index.load_of(pon_port).guaranteed_kbps;
        if (sum > gpon_upstream_kbps) {
            context.faults.add(id_of<PonPort>(pon_port), fault_text::too_much_guaranteed, sum, gpon_upstream_kbps);
        }
    }
}

void check_pon_ports(const CheckContext& context) {
    std::set<std::uint16_t> changed;
    for (const auto& change : context.changes) {
        if (change.element == element_of<PonPort>) {
            changed.insert(change.indices[0]);
        }
    }
    auto with_new_load = context.touched.pon_ports;
    with_new_load.insert(changed.begin(), changed.end());
    for (const auto pon_port : with_new_load) {
        check_limit(context, pon_port);
    }
    for (const auto pon_port : changed) {
        check_passwords(context, pon_port);
    }
    for (const auto& ont : context.onts) {
        const auto pon_port = static_cast<std::uint16_t>(ont.index / onts_per_pon_port);
        if (!changed.contains(pon_port) && needs_passwords(context, pon_port)) {
            check_password(context, ont.index, ont.record);
        }
    }
}

} // namespace xpon::cfgdb
