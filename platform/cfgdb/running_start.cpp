#include "cfgdb/running_start.hpp"

#include "cfgdb/commit.hpp"
#include "cfgdb/ont_index.hpp"
#include "cfgdb/ont_number.hpp"
#include "cfgdb/references.hpp"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <stdexcept>

#include <fmt/format.h>

namespace xpon::cfgdb {
namespace {

using RecordMap = std::map<RecordId, std::vector<std::byte>>;

RecordId ont_id(std::uint16_t index) {
    return {element_of<PonOnt>, {index, 0}};
}

bool refers_to(const Records& state, const RecordId& user, const RecordId& target) {
    const auto references = all_references(element(user.element).table, state.running(user));
    return std::ranges::any_of(references, [&](const auto& reference) { return reference.id() == target; });
}

/// Which records to leave out because of faults. Looks at the state with all of them in force.
class Selection {
public:
    Selection(const WriteTransaction& transaction, const RecordMap& records)
        : state_(transaction), index_(transaction), records_(records) {}

    void blame(const Fault& fault) {
        if (fault.where.element == element_of<PonPort>) {
            return relieve(fault.where.indices[0], fault.text);
        }
        if (!add(fault.where, fault.text)) {
            blame_others(fault);
        }
    }

    /// With the reason of each.
    [[nodiscard]] const std::map<RecordId, std::string>& left_out() const {
        return left_out_;
    }

private:
    /// False for a record that is not among the ones that can be left out.
    bool add(const RecordId& id, const std::string& reason) {
        if (!records_.contains(id)) {
            return false;
        }
        if (left_out_.emplace(id, reason).second) {
            add_dependents(id);
        }
        return true;
    }

    void add_dependents(const RecordId& id) {
        if (id.element == element_of<PonOnt>) {
            for (std::uint16_t service = 0; service < services_per_ont; ++service) {
                add({element_of<OntServices>, {id.indices[0], service}}, "its ONT is left out");
            }
            return;
        }
        const auto reason = fmt::format("{} is left out", name_of(id));
        for (const auto ont : index_.users_of({id.element, static_cast<std::uint8_t>(id.indices[0] + 1)})) {
            add(ont_id(ont), reason);
        }
        for (std::uint16_t position = 0; position < element(element_of<OntTemplate>).sizes[0]; ++position) {
            const RecordId bundle{element_of<OntTemplate>, {position, 0}};
            if (refers_to(state_, bundle, id)) {
                add(bundle, reason);
            }
        }
    }

    /// For a record of the factory, which cannot be left out: what makes it wrong is.
    void blame_others(const Fault& fault) {
        const auto& where = fault.where;
        if (where.element == element_of<GSystemManagement>) {
            add({element_of<OobPort>, {}}, fault.text);
        } else if (where.element == element_of<OntServices>) {
            add(ont_id(where.indices[0]), fault.text);
        } else if (where.element == element_of<OntTemplate>) {
            for (const auto& [id, record] : records_) {
                if (refers_to(state_, where, id)) {
                    add(id, fault.text);
                }
            }
        } else {
            add_dependents(where);
            add_sharers_of_vlans(where);
        }
    }

    void add_sharers_of_vlans(const RecordId& cross_connect) {
        const auto own = state_.running<ProfileOntCrossConnect>(cross_connect.indices[0]);
        for (const auto& [id, record] : records_) {
            if (id.element != cross_connect.element || id.element != element_of<ProfileOntCrossConnect>) {
                continue;
            }
            const auto other = state_.running<ProfileOntCrossConnect>(id.indices[0]);
            if (other.s_vid == own.s_vid || other.s_vid == own.multicast_vid || other.multicast_vid == own.s_vid) {
                add(id, fmt::format("it shares a VLAN with {}", name_of(cross_connect)));
            }
        }
    }

    /// Leaves out the last ONTs of a PON port until the others have room on it.
    void relieve(std::uint16_t pon_port, const std::string& reason) {
        auto load = index_.load_of(pon_port);
        const auto limit = state_.running<PonPort>(pon_port).ont_limit;
        for (auto ont = onts_per_pon_port; ont-- > 0 && (load.onts > limit || load.guaranteed_kbps > upstream_kbps);) {
            const auto index = static_cast<std::uint16_t>(pon_port * onts_per_pon_port + ont);
            const auto record = state_.running<PonOnt>(index);
            if (record.serial == 0 || record.enabled == 0) {
                continue;
            }
            const auto share = entries_of(evaluate_ont(state_, index, record)).load;
            load.onts -= share.onts;
            load.guaranteed_kbps -= share.guaranteed_kbps;
            add(ont_id(index), reason);
        }
    }

    const Records state_;
    const OntIndex index_;
    const RecordMap& records_;
    std::map<RecordId, std::string> left_out_;
};

void leave_out(RecordMap& records, const std::map<RecordId, std::string>& left_out, StartReport& report) {
    for (const auto& [id, reason] : left_out) {
        records.erase(id);
        report.add(id, fmt::format("left out: {}", reason));
    }
}

enum class Round : std::uint8_t { not_wanted, runs, does_not_fit };

} // namespace

bool run_what_fits(const Environment& environment, RecordList list, const Filling& filling, StartReport& report) {
    RecordMap records(std::make_move_iterator(list.begin()), std::make_move_iterator(list.end()));
    // What depends on a record fails in the same round or the next; more rounds than this follow no such chain.
    constexpr int most_rounds = 50;
    auto outcome = Round::does_not_fit;
    for (int round = 0; outcome == Round::does_not_fit; ++round) {
        outcome = in_write_transaction(environment, [&](WriteTransaction& transaction) {
            if (!filling.prepare(transaction)) {
                return Round::not_wanted;
            }
            RecordWriter writer(transaction);
            for (const auto& [id, record] : records) {
                writer.set_candidate(id, record);
            }
            const auto applied = apply_and_check(transaction);
            if (applied.faults.empty()) {
                filling.complete(transaction);
                transaction.commit();
                return Round::runs;
            }
            if (records.empty()) {
                throw std::runtime_error("The factory configuration fails its own checks: " + applied.faults.report());
            }
            Selection selection(transaction, records);
            for (const auto& fault : applied.faults.all()) {
                selection.blame(fault);
            }
            if (selection.left_out().empty() || round == most_rounds) {
                report.add(fmt::format("All records are left out: {}", applied.faults.all().front().text));
                records.clear();
            }
            leave_out(records, selection.left_out(), report);
            return Round::does_not_fit;
        });
    }
    return outcome == Round::runs;
}

} // namespace xpon::cfgdb
