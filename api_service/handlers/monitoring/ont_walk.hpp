#pragma once

#include "api_service/handlers/monitoring/ont_reports.hpp"
#include "api_service/handlers/monitoring/ont_serial.hpp"
#include "xpon/cfgdb/cfgdb_wrapper.hpp"
#include "xpon/cfgdb/records/pon_ont.hpp"

#include <optional>
#include <unordered_map>
#include <vector>

#include <boost/unordered/unordered_flat_set.hpp>

namespace xpon::api_service {

/// An ONT of the running configuration and what is reported of it: at most one of the two. The reports belong to the
/// walk's OntReports.
struct ConfiguredOnt {
    unsigned port; ///< configured place, counted from 1
    unsigned ont_id;
    unsigned short config_index; ///< of its configuration record
    OntSerial serial;
    cfgdb::PonOnt configuration;
    const Ont__state_info* state = nullptr;
    const Ont_unactivated_entry* unactivated = nullptr;
};

/// Meets the configured ONTs of a range in ascending order and brings each together with what is reported of it, in
/// time linear in all of them.
///
/// The reported states come in the order of the walk, so that one place in their list suffices; a list that does not
/// go with the configuration is an error and never a wrong pair.
class OntWalk {
public:
    /// All arguments must outlive the walk.
    OntWalk(ILogger& logger, const cfgdb::CfgDbWrapper& db, const Bitmap_ont_range& range, const OntReports& reports);

    /// The next configured ONT; none after the last.
    Result<std::optional<ConfiguredOnt>> next();

    /// To be asked when no ONT is left: error InvalidState when a reported state found no ONT.
    [[nodiscard]] Result<void> finish() const;

    /// The unactivated ONTs that no ONT met so far is configured for, in the order of the report.
    [[nodiscard]] std::vector<const Ont_unactivated_entry*> unclaimed() const;

private:
    Result<void> match(ConfiguredOnt& ont);

    ILogger& logger_;
    const cfgdb::CfgDbWrapper& db_;
    const Bitmap_ont_range& range_;
    Bitmap_iterator iterator_{};
    std::span<const Ont__state_info> activated_left_;
    boost::unordered_flat_set<OntSerial, OntSerialHash> activated_met_;
    std::span<const Ont_unactivated_entry> unactivated_;
    std::unordered_map<OntSerial, std::size_t, OntSerialHash> unactivated_by_serial_; ///< the first of a serial
    std::vector<bool> claimed_;
};

} // namespace xpon::api_service
