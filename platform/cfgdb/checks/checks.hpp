#pragma once

#include "cfgdb/checks/check_context.hpp"

#include <vector>

namespace xpon::cfgdb {

/// A row of the table of checks.
struct Check {
    void (*run)(const CheckContext& context);
    const char* rule;                ///< what holds in a configuration that passes, for the reader of the documentation
    std::vector<ElementId> elements; ///< whose records it looks at: it runs when one of them changes
    std::vector<const char*> texts;  ///< of the faults that it finds
};

/// In the order in which they run, which decides the fault that a client is told.
const std::vector<Check>& all_checks();

/// Runs every check that a change concerns, in their fixed order.
void run_checks(const CheckContext& context);

/// @{ The checks, as their table lists them.
void check_management_exists(const CheckContext& context);
void check_management_networks(const CheckContext& context);
void check_management_vlan(const CheckContext& context);
void check_carried_vlans(const CheckContext& context);
void check_channel_ports(const CheckContext& context);
void check_channel_members(const CheckContext& context);
void check_template_references(const CheckContext& context);
void check_ont_references(const CheckContext& context);
void check_serials(const CheckContext& context);
void check_vlan_roles(const CheckContext& context);
void check_vlan_pairs(const CheckContext& context);
void check_service_clashes(const CheckContext& context);
void check_guaranteed_bandwidth(const CheckContext& context);
void check_pon_ports(const CheckContext& context);
void check_service_needs(const CheckContext& context);
/// @}

} // namespace xpon::cfgdb
