#pragma once

#include "cfgdb/checks/faults.hpp"
#include "cfgdb/effective_ont.hpp"
#include "cfgdb/ont_index.hpp"
#include "cfgdb/records.hpp"

#include <vector>

namespace xpon::cfgdb {

/// A commit as its checks see it: the configuration as it would run, and what is new in it. The configuration before
/// satisfied every check.
struct CheckContext {
    const Records& records;
    const OntIndex& index;
    const std::vector<RecordId>& changes;  ///< in order, but for those of labels alone
    const std::vector<EffectiveOnt>& onts; ///< the configured ones that a change reaches, in order
    const Touched& touched;
    Faults& faults;

    [[nodiscard]] bool has_change_of(ElementId id) const {
        return std::ranges::any_of(changes, [&](const RecordId& change) { return change.element == id; });
    }
};

/// The record `index` (from 0) of an element of depth 1, or the one of an element of depth 0.
template <class Record>
RecordId id_of(std::size_t index = 0) {
    return {element_of<Record>, {static_cast<std::uint16_t>(index), 0}};
}

inline RecordId service_id(std::uint16_t ont, std::size_t position) {
    return {element_of<OntServices>, {ont, static_cast<std::uint16_t>(position)}};
}

} // namespace xpon::cfgdb
