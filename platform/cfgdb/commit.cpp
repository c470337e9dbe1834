#include "cfgdb/commit.hpp"

#include "cfgdb/change_notice.hpp"
#include "cfgdb/checks/checks.hpp"
#include "cfgdb/commit_log.hpp"
#include "cfgdb/keys.hpp"
#include "cfgdb/ont_index.hpp"
#include "cfgdb/references.hpp"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <utility>

namespace xpon::cfgdb {
namespace {

/// The candidate's records that differ from running in more than what people read.
std::vector<RecordId> with_new_content(const Records& records, const std::vector<RecordId>& changes) {
    std::vector<RecordId> differing;
    std::ranges::copy_if(changes, std::back_inserter(differing), [&](const RecordId& id) {
        return differ_in_content(element(id.element).table, records.running(id), records.candidate(id));
    });
    return differing;
}

/// The ONTs that the changes reach. Those that come to use a changed profile only now are changed themselves, or
/// their template is, so the index of the old state knows them all.
std::set<std::uint16_t> reached_onts(const OntIndex& index, const std::vector<RecordId>& changes) {
    std::set<std::uint16_t> onts;
    for (const auto& change : changes) {
        if (change.element == element_of<PonOnt> || change.element == element_of<OntServices>) {
            onts.insert(change.indices[0]);
        } else if (is_target(change.element)) {
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

Touched replace_all_entries(ChangeableTransaction& transaction, const std::set<std::uint16_t>& onts,
                            std::map<std::uint16_t, OntEntries> before, std::map<std::uint16_t, OntEntries> after) {
    Touched touched;
    for (const auto index : onts) {
        replace_entries(transaction, index, before[index], after[index], touched);
    }
    return touched;
}

PlannedCommit::Basis basis_in(const Transaction& transaction) {
    PlannedCommit::Basis basis{.last_commit = commit_number(transaction), .candidate = {}};
    const Key prefix(Store::candidate);
    transaction.visit(prefix, prefix, [&](Bytes key, Bytes value) {
        basis.candidate.insert(basis.candidate.end(), key.begin(), key.end());
        basis.candidate.insert(basis.candidate.end(), value.begin(), value.end());
        return true;
    });
    return basis;
}

} // namespace

Applied apply_and_check(ChangeableTransaction& transaction) {
    Applied applied;
    RecordWriter writer(transaction);
    applied.changes = writer.list(Store::candidate);
    const OntIndex index(transaction);
    const auto content = with_new_content(writer, applied.changes);
    applied.onts = reached_onts(index, content);
    const auto& reached = applied.onts;
    auto before = collect_entries(evaluate(writer, reached));
    for (const auto& id : applied.changes) {
        writer.accept(id);
    }
    const auto onts = evaluate(writer, reached);
    const auto touched = replace_all_entries(transaction, reached, std::move(before), collect_entries(onts));
    run_checks({writer, index, content, onts, touched, applied.faults});
    return applied;
}

core::Result<PlannedCommit> plan_commit(const Environment& environment) {
    Draft draft(environment);
    auto basis = basis_in(draft);
    auto applied = apply_and_check(draft);
    if (applied.changes.empty()) {
        return core::ErrorPayload(core::Error::Empty, "Nothing to commit");
    }
    if (!applied.faults.empty()) {
        return core::ErrorPayload(core::Error::InvalidState, applied.faults.report());
    }
    return PlannedCommit{std::move(basis), std::move(applied), draft.take_changes()};
}

std::optional<std::uint64_t> carry_out(const Environment& environment, const PlannedCommit& plan, ipc::Address by) {
    return in_write_transaction(environment, [&](WriteTransaction& transaction) -> std::optional<std::uint64_t> {
        if (basis_in(transaction) != plan.basis) {
            return std::nullopt;
        }
        make_changes(plan.changes, transaction);
        const auto& [changes, onts, faults] = plan.applied;
        const auto number =
            log_commit(transaction, {.by = by, .changes = notice_of(changes), .onts = {onts.begin(), onts.end()}});
        transaction.commit();
        return number;
    });
}

} // namespace xpon::cfgdb
