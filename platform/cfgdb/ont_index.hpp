#pragma once

#include "cfgdb/effective_ont.hpp"
#include "cfgdb/keys.hpp"

#include <set>
#include <utility>

namespace xpon::cfgdb {

/// Who puts a VLAN to use: a cross-connect profile through any number of services, or one service by its own override.
struct VlanUse {
    enum Role : std::uint8_t { service_vlan, multicast_vlan };

    std::uint16_t vlan;
    bool by_override;
    std::uint8_t cross_connect;
    std::uint16_t ont;
    std::uint8_t position;
    Role role;
};

using VlanPair = std::pair<std::uint16_t, std::uint16_t>; ///< S-VID, C-VID
using ServiceId = std::pair<std::uint16_t, std::uint8_t>; ///< flat ONT index, position of the service

inline constexpr std::uint64_t upstream_kbps = 1244160; ///< of a PON port [G.984.2]

/// The enabled ONTs of one PON port.
struct PonLoad {
    std::uint64_t onts = 0;
    std::uint64_t guaranteed_kbps = 0;
};

/// What an ONT adds to the indexes: the entries that exist because of it, and its share of its PON port.
struct OntEntries {
    std::vector<Key> keys; ///< sorted
    PonLoad load;
};

OntEntries entries_of(const EffectiveOnt& ont);

/// What changed in the indexes: the places where a check may find something new.
struct Touched {
    std::set<std::uint64_t> serials;
    std::set<std::uint16_t> vlans;
    std::set<VlanPair> vlan_pairs;
    std::set<std::uint16_t> pon_ports; ///< from 0
};

/// The indexes over the configured ONTs of the running configuration.
class OntIndex {
public:
    explicit OntIndex(const Transaction& transaction) : transaction_(transaction) {}

    [[nodiscard]] std::vector<std::uint16_t> users_of(const Reference& reference) const;
    [[nodiscard]] std::vector<std::uint16_t> onts_with_serial(std::uint64_t serial) const;
    [[nodiscard]] std::vector<ServiceId> services_with(const VlanPair& pair) const;
    /// One entry per profile, in order, then one per overriding service, in order of ONTs. The cost of the latter
    /// follows their number.
    [[nodiscard]] std::vector<VlanUse> uses_of(std::uint16_t vlan) const;
    /// The profiles of the services that override their VLAN with this one; the cost follows the profiles' number.
    [[nodiscard]] std::vector<std::uint8_t> overridden_profiles(std::uint16_t vlan) const;
    [[nodiscard]] std::set<std::uint16_t> vlans_in_use() const;
    [[nodiscard]] PonLoad load_of(std::uint16_t pon_port) const;

private:
    [[nodiscard]] std::vector<VlanUse> first_uses(std::uint16_t vlan, bool by_override) const;

    const Transaction& transaction_;
};

/// Replaces what an ONT adds to the indexes and notes what that touches. Empty entries stand for no ONT.
void replace_entries(ChangeableTransaction& transaction, std::uint16_t ont, const OntEntries& before,
                     const OntEntries& after, Touched& touched);

} // namespace xpon::cfgdb
