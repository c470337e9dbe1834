#include "cfgdb/checks/checks.hpp"
#include "cfgdb/checks/fault_texts.hpp"

#include <algorithm>

namespace xpon::cfgdb {
namespace {

template <class Interface>
bool has_static_address(const Interface& interface) {
    return interface.enabled != 0 && interface.address_mode == AddressMode::fixed;
}

} // namespace

void check_management_exists(const CheckContext& context) {
    if (context.records.running<GSystemManagement>().enabled == 0 && context.records.running<OobPort>().enabled == 0) {
        context.faults.add(id_of<GSystemManagement>(), fault_text::no_management);
    }
}

void check_management_networks(const CheckContext& context) {
    const auto in_band = context.records.running<GSystemManagement>();
    const auto out_of_band = context.records.running<OobPort>();
    if (!has_static_address(in_band) || !has_static_address(out_of_band)) {
        return;
    }
    const auto shift = 32U - std::min(in_band.prefix_length, out_of_band.prefix_length);
    if (in_band.ip_address >> shift == out_of_band.ip_address >> shift) {
        context.faults.add(id_of<GSystemManagement>(), fault_text::networks_overlap);
    }
}

} // namespace xpon::cfgdb
