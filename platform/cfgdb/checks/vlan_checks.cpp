#include "cfgdb/checks/checks.hpp"
#include "cfgdb/checks/fault_texts.hpp"
#include "ranges/board_ports.hpp"
#include "xpon/peer_side/bits.hpp"

#include <algorithm>
#include <bitset>
#include <set>
#include <vector>

namespace xpon::cfgdb {
namespace {

using VlanModel = ProfileOntCrossConnect::VlanModel;
using VlanBits = std::bitset<4096>;

/// Where a VLAN in use comes from: the service that overrides it, else the profile.
RecordId source_of(const VlanUse& use) {
    return use.by_override ? service_id(use.ont, use.position) : id_of<ProfileOntCrossConnect>(use.cross_connect - 1U);
}

VlanBits carried_vlans(const Records& records) {
    VlanBits carried;
    const auto count = static_cast<std::uint16_t>(ranges::board_uplink_ports());
    for (std::uint16_t position = 0; position < count; ++position) {
        const auto port = records.running<FrontPort>(position);
        if (port.enabled == 0) {
            continue;
        }
        carried[port.pvid] = true;
        for (std::size_t vlan = 0; vlan < carried.size(); ++vlan) {
            carried[vlan] = carried[vlan] || has_bit(port.tagged_vlans, vlan);
        }
    }
    return carried;
}

/// One use of a VLAN as the roles are compared.
struct Claim {
    std::uint8_t cross_connect;
    VlanUse::Role role;
    VlanModel model;
    RecordId source;
};

bool is_compatible(const Claim& left, const Claim& right) {
    if (left.role != right.role) {
        return left.cross_connect == right.cross_connect;
    }
    return left.role == VlanUse::multicast_vlan || left.model == right.model;
}

const char* name_of(VlanModel model) {
    const auto* const field = serializer::find_field(element(element_of<ProfileOntCrossConnect>).table, "vlan_model");
    return field->names[static_cast<std::size_t>(model)];
}

const char* name_of_use(const Claim& claim, const Claim& other) {
    if (claim.role == other.role) {
        return name_of(claim.model);
    }
    return claim.role == VlanUse::multicast_vlan ? "multicast_vid" : "s_vid";
}

class Claims {
public:
    explicit Claims(const CheckContext& context) : context_(context) {
        for (std::uint16_t position = 0; position < element(element_of<ProfileOntCrossConnect>).sizes[0]; ++position) {
            profiles_.push_back(context.records.running<ProfileOntCrossConnect>(position));
        }
    }

    void check(std::uint16_t vlan) const {
        auto claims = of_profiles(vlan);
        const auto overridden = context_.index.overridden_profiles(vlan);
        for (const auto number : overridden) {
            claims.push_back(by_override(number, {}));
        }
        if (first_conflict(claims) == claims.size()) {
            return;
        }
        // Which services are at fault is looked up only now: there may be thousands.
        claims.resize(claims.size() - overridden.size());
        for (const auto& use : context_.index.uses_of(vlan)) {
            if (use.by_override) {
                claims.push_back(by_override(use.cross_connect, source_of(use)));
            }
        }
        report(vlan, claims);
    }

private:
    [[nodiscard]] std::vector<Claim> of_profiles(std::uint16_t vlan) const {
        std::vector<Claim> claims;
        for (std::size_t i = 0; i < profiles_.size(); ++i) {
            const auto& profile = profiles_[i];
            const auto number = static_cast<std::uint8_t>(i + 1);
            const auto source = id_of<ProfileOntCrossConnect>(i);
            if (profile.name[0] == '\0') {
                continue;
            }
            if (profile.s_vid == vlan) {
                claims.push_back({number, VlanUse::service_vlan, profile.vlan_model, source});
            }
            if (profile.multicast_vid == vlan) {
                claims.push_back({number, VlanUse::multicast_vlan, profile.vlan_model, source});
            }
        }
        return claims;
    }

    [[nodiscard]] Claim by_override(std::uint8_t cross_connect, const RecordId& source) const {
        return {cross_connect, VlanUse::service_vlan, profiles_[cross_connect - 1U].vlan_model, source};
    }

    static std::vector<Claim>::const_iterator opponent_of(const std::vector<Claim>& claims, std::size_t position) {
        const auto end = claims.begin() + static_cast<std::ptrdiff_t>(position);
        return std::find_if(claims.begin(), end,
                            [&](const Claim& earlier) { return !is_compatible(earlier, claims[position]); });
    }

    static std::size_t first_conflict(const std::vector<Claim>& claims) {
        std::size_t position = 0;
        while (position < claims.size() &&
               opponent_of(claims, position) == claims.begin() + static_cast<std::ptrdiff_t>(position)) {
            ++position;
        }
        return position;
    }

    void report(std::uint16_t vlan, const std::vector<Claim>& claims) const {
        for (std::size_t i = 0; i < claims.size(); ++i) {
            const auto opponent = opponent_of(claims, i);
            if (opponent != claims.begin() + static_cast<std::ptrdiff_t>(i)) {
                context_.faults.add(claims[i].source, fault_text::two_roles, vlan, name_of_use(*opponent, claims[i]),
                                    name_of_use(claims[i], *opponent));
            }
        }
    }

    const CheckContext& context_;
    std::vector<ProfileOntCrossConnect> profiles_;
};

} // namespace

void check_management_vlan(const CheckContext& context) {
    const auto management = context.records.running<GSystemManagement>();
    if (management.enabled == 0) {
        return;
    }
    for (const auto& use : context.index.uses_of(management.vlan_id)) {
        context.faults.add(source_of(use), fault_text::is_management_vlan, management.vlan_id);
    }
}

void check_carried_vlans(const CheckContext& context) {
    const bool has_new_ports = context.has_change_of(element_of<FrontPort>);
    const auto vlans = has_new_ports ? context.index.vlans_in_use() : context.touched.vlans;
    const auto management = context.records.running<GSystemManagement>();
    const bool has_management =
        management.enabled != 0 && (has_new_ports || context.has_change_of(element_of<GSystemManagement>));
    if (vlans.empty() && !has_management) {
        return;
    }
    const auto carried = carried_vlans(context.records);
    if (has_management && !carried[management.vlan_id]) {
        context.faults.add(id_of<GSystemManagement>(), fault_text::vlan_not_carried, management.vlan_id);
    }
    for (const auto vlan : vlans) {
        if (carried[vlan]) {
            continue;
        }
        for (const auto& use : context.index.uses_of(vlan)) {
            context.faults.add(source_of(use), fault_text::vlan_not_carried, vlan);
        }
    }
}

void check_vlan_roles(const CheckContext& context) {
    auto vlans = context.touched.vlans;
    for (const auto& change : context.changes) {
        if (change.element == element_of<ProfileOntCrossConnect>) {
            const auto profile = context.records.running<ProfileOntCrossConnect>(change.indices[0]);
            vlans.insert({profile.s_vid, profile.multicast_vid});
        }
    }
    // A profile whose model changed reaches the VLANs that its services chose for themselves.
    for (const auto& ont : context.onts) {
        for (const auto& service : ont.services) {
            if (service.overrides_s_vid) {
                vlans.insert(service.s_vid);
            }
        }
    }
    vlans.erase(0);
    if (vlans.empty()) {
        return;
    }
    const Claims claims(context);
    for (const auto vlan : vlans) {
        claims.check(vlan);
    }
}

} // namespace xpon::cfgdb
