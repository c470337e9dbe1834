#include "cfgdb/commit.hpp"

#include "cfgdb/checks/checks.hpp"
#include "cfgdb/ont_index.hpp"

#include <map>
#include <set>

namespace xpon::cfgdb {
namespace {

bool is_profile(ElementId id) {
    return id == element_of<OntTemplate> || id == element_of<ProfileOntPortsCfg> ||
           id == element_of<ProfileOntCrossConnect> || id == element_of<ProfileOntManagementCfg> ||
           id == element_of<ProfileOntDba> || id == element_of<ProfileOntShaping>;
}

/// The ONTs that the changes reach. Those that come to use a changed profile only now are changed themselves, or
/// their template is, so the index of the old state knows them all.
std::set<std::uint16_t> reached_onts(const OntIndex& index, const std::vector<RecordId>& changes) {
    std::set<std::uint16_t> onts;
    for (const auto& change : changes) {
        if (change.element == element_of<PonOnt> || change.element == element_of<OntServices>) {
            onts.insert(change.indices[0]);
        } else if (is_profile(change.element)) {
            const auto number = static_cast<std::uint8_t>(change.indices[0] + 1);
            const auto users = index.users_of({change.element, number});
            onts.insert(users.begin(), users.end());
        }
    }
    return onts;
}

/// The configured ones of the ONTs.
std::vector<EffectiveOnt> evaluate(const Records& records, const std::set<std::uint16_t>& onts) {
    std::vector<EffectiveOnt> result;
    for (const auto index : onts) {
        const auto record = records.running<PonOnt>(index);
        if (record.serial != 0) {
            result.push_back(evaluate_ont(records, index, record));
        }
    }
    return result;
}

std::map<std::uint16_t, OntEntries> collect_entries(const std::vector<EffectiveOnt>& onts) {
    std::map<std::uint16_t, OntEntries> entries;
    for (const auto& ont : onts) {
        entries.emplace(ont.index, entries_of(ont));
    }
    return entries;
}

Touched replace_all_entries(WriteTransaction& transaction, const std::set<std::uint16_t>& onts,
                            std::map<std::uint16_t, OntEntries> before, std::map<std::uint16_t, OntEntries> after) {
    Touched touched;
    for (const auto index : onts) {
        replace_entries(transaction, index, before[index], after[index], touched);
    }
    return touched;
}

} // namespace

Applied apply_and_check(WriteTransaction& transaction) {
    Applied applied;
    RecordWriter writer(transaction);
    applied.changes = writer.list(Store::candidate);
    const OntIndex index(transaction);
    const auto reached = reached_onts(index, applied.changes);
    auto before = collect_entries(evaluate(writer, reached));
    for (const auto& id : applied.changes) {
        writer.accept(id);
    }
    const auto onts = evaluate(writer, reached);
    const auto touched = replace_all_entries(transaction, reached, std::move(before), collect_entries(onts));
    run_checks({writer, index, applied.changes, onts, touched, applied.faults});
    return applied;
}

core::Result<std::vector<RecordId>> apply_candidate(WriteTransaction& transaction) {
    auto applied = apply_and_check(transaction);
    if (applied.changes.empty()) {
        return core::ErrorPayload(core::Error::Empty, "Nothing to commit");
    }
    if (!applied.faults.empty()) {
        return core::ErrorPayload(core::Error::InvalidState, applied.faults.report());
    }
    return std::move(applied.changes);
}

} // namespace xpon::cfgdb
