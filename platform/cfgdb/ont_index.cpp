#include "cfgdb/ont_index.hpp"

#include "cfgdb/ont_number.hpp"

#include <algorithm>
#include <iterator>

namespace xpon::cfgdb {
namespace {

/// The second byte of an index key.
enum class Kind : std::uint8_t { user, serial, vlan, vlan_pair, load };

Key index_key(Kind kind) {
    return Key(Store::index).add(static_cast<std::uint8_t>(kind));
}

/// A reader behind the store and the kind.
KeyReader index_reader(Bytes key) {
    return KeyReader(key.subspan(2));
}

Key user_key(const Reference& reference) {
    return index_key(Kind::user).add(static_cast<std::uint16_t>(reference.element)).add(reference.number);
}

Key serial_key(std::uint64_t serial) {
    return index_key(Kind::serial).add(serial);
}

Key vlan_key(std::uint16_t vlan) {
    return index_key(Kind::vlan).add(vlan);
}

Key vlan_pair_key(const VlanPair& pair) {
    return index_key(Kind::vlan_pair).add(pair.first).add(pair.second);
}

Key load_key(std::uint16_t pon_port) {
    return index_key(Kind::load).add(pon_port);
}

Key vlan_use_key(std::uint16_t vlan, bool by_override, VlanUse::Role role, const EffectiveOnt& ont,
                 const EffectiveService& service) {
    return vlan_key(vlan)
        .add(static_cast<std::uint8_t>(by_override))
        .add(service.cross_connect)
        .add(static_cast<std::uint8_t>(role))
        .add(ont.index)
        .add(static_cast<std::uint8_t>(service.position));
}

VlanUse vlan_use_of(Bytes key) {
    auto reader = index_reader(key);
    VlanUse use{};
    use.vlan = reader.take<std::uint16_t>();
    use.by_override = reader.take<std::uint8_t>() != 0;
    use.cross_connect = reader.take<std::uint8_t>();
    use.role = static_cast<VlanUse::Role>(reader.take<std::uint8_t>());
    use.ont = reader.take<std::uint16_t>();
    use.position = reader.take<std::uint8_t>();
    return use;
}

void add_service_keys(const EffectiveOnt& ont, const EffectiveService& service, std::vector<Key>& keys) {
    keys.push_back(vlan_use_key(service.s_vid, service.overrides_s_vid, VlanUse::service_vlan, ont, service));
    if (service.profile.multicast_vid != 0) {
        keys.push_back(vlan_use_key(service.profile.multicast_vid, false, VlanUse::multicast_vlan, ont, service));
    }
    if (service.profile.vlan_model == ProfileOntCrossConnect::VlanModel::one_to_one && service.c_vid != 0) {
        keys.push_back(vlan_pair_key({service.s_vid, service.c_vid})
                           .add(ont.index)
                           .add(static_cast<std::uint8_t>(service.position)));
    }
}

void note_touched(Bytes key, Touched& touched) {
    auto reader = index_reader(key);
    switch (static_cast<Kind>(key[1])) {
    case Kind::serial:
        touched.serials.insert(reader.take<std::uint64_t>());
        break;
    case Kind::vlan:
        touched.vlans.insert(reader.take<std::uint16_t>());
        break;
    case Kind::vlan_pair: {
        const auto s_vid = reader.take<std::uint16_t>();
        touched.vlan_pairs.emplace(s_vid, reader.take<std::uint16_t>());
        break;
    }
    default:
        break;
    }
}

void change_load(ChangeableTransaction& transaction, std::uint16_t pon_port, const PonLoad& before,
                 const PonLoad& after) {
    auto load = OntIndex(transaction).load_of(pon_port);
    load.onts += after.onts - before.onts;
    load.guaranteed_kbps += after.guaranteed_kbps - before.guaranteed_kbps;
    transaction.put(load_key(pon_port), std::as_bytes(std::span(&load, 1)));
}

} // namespace

OntEntries entries_of(const EffectiveOnt& ont) {
    // What every ONT takes of its PON port beside its services: burst overhead and OMCI, 13 bytes per frame.
    constexpr std::uint64_t overhead_kbps = 832;
    OntEntries entries;
    entries.keys.push_back(serial_key(ont.record.serial).add(ont.index));
    for (const auto& reference : ont.references) {
        entries.keys.push_back(user_key(reference).add(ont.index));
    }
    for (const auto& service : ont.services) {
        add_service_keys(ont, service, entries.keys);
    }
    std::ranges::sort(entries.keys);
    if (ont.record.enabled != 0) {
        entries.load = {1, ont.guaranteed_kbps + overhead_kbps};
    }
    return entries;
}

std::vector<std::uint16_t> OntIndex::users_of(const Reference& reference) const {
    std::vector<std::uint16_t> onts;
    const auto prefix = user_key(reference);
    transaction_.visit(prefix, prefix, [&](Bytes key, Bytes) {
        onts.push_back(KeyReader(key.last(sizeof(std::uint16_t))).take<std::uint16_t>());
        return true;
    });
    return onts;
}

std::vector<std::uint16_t> OntIndex::onts_with_serial(std::uint64_t serial) const {
    std::vector<std::uint16_t> onts;
    const auto prefix = serial_key(serial);
    transaction_.visit(prefix, prefix, [&](Bytes key, Bytes) {
        onts.push_back(KeyReader(key.last(sizeof(std::uint16_t))).take<std::uint16_t>());
        return true;
    });
    return onts;
}

std::vector<ServiceId> OntIndex::services_with(const VlanPair& pair) const {
    std::vector<ServiceId> services;
    const auto prefix = vlan_pair_key(pair);
    transaction_.visit(prefix, prefix, [&](Bytes key, Bytes) {
        KeyReader reader(key.last(sizeof(std::uint16_t) + sizeof(std::uint8_t)));
        const auto ont = reader.take<std::uint16_t>();
        services.emplace_back(ont, reader.take<std::uint8_t>());
        return true;
    });
    return services;
}

// The first entry of a profile stands for all of its entries: the search goes on behind the profile.
std::vector<VlanUse> OntIndex::first_uses(std::uint16_t vlan, bool by_override) const {
    std::vector<VlanUse> uses;
    const auto prefix = vlan_key(vlan).add(static_cast<std::uint8_t>(by_override));
    for (std::optional<unsigned> from = 0U; from && *from <= 255;) {
        const auto start = Key(prefix).add(static_cast<std::uint8_t>(*from));
        from.reset();
        transaction_.visit(prefix, start, [&](Bytes key, Bytes) {
            uses.push_back(vlan_use_of(key));
            from = uses.back().cross_connect + 1U;
            return false;
        });
    }
    return uses;
}

std::vector<VlanUse> OntIndex::uses_of(std::uint16_t vlan) const {
    auto uses = first_uses(vlan, false);
    const auto profiles = static_cast<std::ptrdiff_t>(uses.size());
    const auto prefix = vlan_key(vlan).add(std::uint8_t{1});
    transaction_.visit(prefix, prefix, [&](Bytes key, Bytes) {
        uses.push_back(vlan_use_of(key));
        return true;
    });
    std::sort(uses.begin() + profiles, uses.end(), [](const VlanUse& left, const VlanUse& right) {
        return std::pair(left.ont, left.position) < std::pair(right.ont, right.position);
    });
    return uses;
}

std::vector<std::uint8_t> OntIndex::overridden_profiles(std::uint16_t vlan) const {
    std::vector<std::uint8_t> profiles;
    for (const auto& use : first_uses(vlan, true)) {
        profiles.push_back(use.cross_connect);
    }
    return profiles;
}

std::set<std::uint16_t> OntIndex::vlans_in_use() const {
    std::set<std::uint16_t> vlans;
    const auto prefix = index_key(Kind::vlan);
    for (std::optional<std::uint16_t> from = std::uint16_t{0}; from;) {
        const auto start = vlan_key(*from);
        from.reset();
        transaction_.visit(prefix, start, [&](Bytes key, Bytes) {
            const auto vlan = vlan_use_of(key).vlan;
            vlans.insert(vlan);
            from = static_cast<std::uint16_t>(vlan + 1);
            return false;
        });
    }
    return vlans;
}

PonLoad OntIndex::load_of(std::uint16_t pon_port) const {
    PonLoad load;
    const auto value = transaction_.get(load_key(pon_port));
    if (value && value->size() == sizeof(load)) {
        std::memcpy(&load, value->data(), sizeof(load));
    }
    return load;
}

void replace_entries(ChangeableTransaction& transaction, std::uint16_t ont, const OntEntries& before,
                     const OntEntries& after, Touched& touched) {
    std::vector<Key> gone;
    std::vector<Key> added;
    std::ranges::set_difference(before.keys, after.keys, std::back_inserter(gone));
    std::ranges::set_difference(after.keys, before.keys, std::back_inserter(added));
    for (const auto& key : gone) {
        transaction.erase(key);
        note_touched(key, touched);
    }
    for (const auto& key : added) {
        transaction.put(key, {});
        note_touched(key, touched);
    }
    if (before.load.onts != after.load.onts || before.load.guaranteed_kbps != after.load.guaranteed_kbps) {
        const auto pon_port = static_cast<std::uint16_t>(ont / onts_per_pon_port);
        change_load(transaction, pon_port, before.load, after.load);
        touched.pon_ports.insert(pon_port);
    }
}

} // namespace xpon::cfgdb
