#include "cfgdb/checks/checks.hpp"

#include <algorithm>
#include <vector>

namespace xpon::cfgdb {
namespace {

/// A check and the elements whose records it looks at: it runs when one of them changes.
struct Check {
    void (*run)(const CheckContext& context);
    std::vector<ElementId> elements;
};

constexpr auto management = element_of<GSystemManagement>;
constexpr auto oob = element_of<OobPort>;
constexpr auto front_port = element_of<FrontPort>;
constexpr auto port_channel = element_of<PortChannel>;
constexpr auto pon_port = element_of<PonPort>;
constexpr auto ont_template = element_of<OntTemplate>;
constexpr auto ports_profile = element_of<ProfileOntPortsCfg>;
constexpr auto cross_connect = element_of<ProfileOntCrossConnect>;
constexpr auto management_profile = element_of<ProfileOntManagementCfg>;
constexpr auto dba = element_of<ProfileOntDba>;
constexpr auto shaping = element_of<ProfileOntShaping>;
constexpr auto ont = element_of<PonOnt>;
constexpr auto service = element_of<OntServices>;

/// The order decides which fault a client is told.
const std::vector<Check>& all_checks() {
    static const std::vector<Check> checks{
        {check_management_exists, {management, oob}},
        {check_management_networks, {management, oob}},
        {check_management_vlan, {management, cross_connect, ont_template, ont, service}},
        {check_carried_vlans, {management, front_port, cross_connect, ont_template, ont, service}},
        {check_channel_ports, {port_channel}},
        {check_channel_members, {port_channel, front_port}},
        {check_template_references, {ont_template, ports_profile, management_profile, shaping, cross_connect, dba}},
        {check_ont_references,
         {ont, service, ont_template, ports_profile, management_profile, shaping, cross_connect, dba}},
        {check_serials, {ont}},
        {check_vlan_roles, {cross_connect, ont_template, ont, service}},
        {check_vlan_pairs, {cross_connect, ont_template, ont, service}},
        {check_service_clashes, {cross_connect, ont_template, ont, service}},
        {check_guaranteed_bandwidth, {dba, cross_connect, ont_template, ont, service}},
        {check_pon_ports, {pon_port, ont}},
        {check_service_needs, {ports_profile, cross_connect, ont_template, ont, service}},
    };
    return checks;
}

} // namespace

void run_checks(const CheckContext& context) {
    for (const auto& check : all_checks()) {
        if (std::ranges::any_of(check.elements, [&](ElementId id) { return context.has_change_of(id); })) {
            check.run(context);
        }
    }
}

} // namespace xpon::cfgdb
