#include "cfgdb/checks/checks.hpp"

#include "cfgdb/checks/fault_texts.hpp"
#include "cfgdb/references.hpp"

#include <algorithm>
#include <vector>

namespace xpon::cfgdb {
namespace {

constexpr auto management = element_of<GSystemManagement>;
constexpr auto oob = element_of<OobPort>;
constexpr auto front_port = element_of<FrontPort>;
constexpr auto port_channel = element_of<PortChannel>;
constexpr auto pon_port = element_of<PonPort>;
constexpr auto ont_template = element_of<OntTemplate>;
constexpr auto ports_profile = element_of<ProfileOntPortsCfg>;
constexpr auto cross_connect = element_of<ProfileOntCrossConnect>;
constexpr auto dba = element_of<ProfileOntDba>;
constexpr auto ont = element_of<PonOnt>;
constexpr auto service = element_of<OntServices>;

/// The elements, and those that their records refer to.
std::vector<ElementId> with_targets(std::vector<ElementId> elements) {
    for (const auto id : std::vector(elements)) {
        const auto targets = targets_of(id);
        elements.insert(elements.end(), targets.begin(), targets.end());
    }
    return elements;
}

} // namespace

const std::vector<Check>& all_checks() {
    static const std::vector<Check> checks{
        {check_management_exists,
         "The in-band or the out-of-band management interface is enabled.",
         {management, oob},
         {fault_text::no_management}},
        {check_management_networks,
         "The subnets of the two management interfaces do not overlap, where both are enabled and have static "
         "addresses.",
         {management, oob},
         {fault_text::networks_overlap}},
        {check_management_vlan,
         "The VLAN of the enabled in-band interface is no S-VLAN or multicast VLAN in use.",
         {management, cross_connect, ont_template, ont, service},
         {fault_text::is_management_vlan}},
        {check_carried_vlans,
         "An enabled front port carries every S-VLAN and multicast VLAN in use and that of the enabled in-band "
         "interface.",
         {management, front_port, cross_connect, ont_template, ont, service},
         {fault_text::vlan_not_carried}},
        {check_channel_ports,
         "A front port is a member of one enabled port channel at most.",
         {port_channel},
         {fault_text::port_taken}},
        {check_channel_members,
         "An enabled port channel has min_links members or more; they exist and agree in speed, max_frame_size, pvid "
         "and tagged_vlans.",
         {port_channel, front_port},
         {fault_text::too_few_members, fault_text::no_such_port, fault_text::ports_differ}},
        {check_template_references,
         "Every profile that a defined template names is defined.",
         with_targets({ont_template}),
         {fault_text::undefined_profile}},
        {check_ont_references,
         "Every template and profile that an ONT or one of its services in mode custom names is defined.",
         with_targets({ont, service}),
         {fault_text::undefined_template, fault_text::undefined_profile}},
        {check_serials, "The serial of an ONT is unique on the OLT.", {ont}, {fault_text::serial_taken}},
        {check_vlan_roles,
         "An S-VLAN has one vlan_model, and is no multicast VLAN of another cross-connect profile.",
         {cross_connect, ont_template, ont, service},
         {fault_text::two_roles}},
        {check_vlan_pairs,
         "A one_to_one service has a C-VLAN, and its pair of S-VLAN and C-VLAN is unique on the OLT.",
         {cross_connect, ont_template, ont, service},
         {fault_text::no_c_vlan, fault_text::pair_taken}},
        {check_service_clashes,
         "Two services of an ONT, bridged and not iptv, do not take the same frames of one Ethernet port; no two have "
         "the same termination and VLANs.",
         {cross_connect, ont_template, ont, service},
         {fault_text::clash_on_port, fault_text::same_vlans}},
        {check_guaranteed_bandwidth,
         "What the enabled ONTs of a PON port are guaranteed upstream fits its line rate: fixed and assured bandwidth "
         "of all T-CONTs, a shared one counted once, and 832 kbit/s of overhead for each ONT.",
         {dba, cross_connect, ont_template, ont, service},
         {fault_text::too_much_guaranteed}},
        {check_pon_ports,
         "A PON port has ont_limit enabled ONTs at most; with onu_auth serial_password each has a password.",
         {pon_port, ont},
         {fault_text::too_many_onts, fault_text::no_password}},
        {check_service_needs,
         "A voip service has an enabled telephone port in the ONT's ports profile, an enabled line a voip service, a "
         "management service a management profile.",
         {ports_profile, cross_connect, ont_template, ont, service},
         {fault_text::no_telephone_port, fault_text::no_voice_service, fault_text::no_management_profile}},
    };
    return checks;
}

void run_checks(const CheckContext& context) {
    for (const auto& check : all_checks()) {
        if (std::ranges::any_of(check.elements, [&](ElementId id) { return context.has_change_of(id); })) {
            check.run(context);
        }
    }
}

} // namespace xpon::cfgdb
