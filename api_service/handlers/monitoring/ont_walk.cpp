#include "api_service/handlers/monitoring/ont_walk.hpp"

#include "xpon/cfgdb/element_functions.hpp"
#include "xpon/core/c_status.hpp"

namespace xpon::api_service {

OntWalk::OntWalk(ILogger& logger, const cfgdb::CfgDbWrapper& db, const Bitmap_ont_range& range,
                 const OntReports& reports)
    : logger_(logger), db_(db), range_(range), activated_left_(reports.activated()),
      unactivated_(reports.unactivated()), claimed_(unactivated_.size()) {
    activated_met_.reserve(activated_left_.size());
    unactivated_by_serial_.reserve(unactivated_.size());
    for (std::size_t i = 0; i < unactivated_.size(); ++i) {
        unactivated_by_serial_.try_emplace(make_serial(unactivated_[i].serial), i);
    }
}

Result<std::optional<ConfiguredOnt>> OntWalk::next() {
    std::uint8_t port = 0;
    std::uint16_t position = 0;
    while (get_next_bitmap_ont_ids(&range_, &iterator_, &port, &position) == 0) {
        ConfiguredOnt ont{.port = port + 1U,
                          .ont_id = position + 1U,
                          .config_index = get_ont_config_index(port, position),
                          .serial = {},
                          .configuration = {}};
        BOOST_OUTCOME_TRY(
            core::call_c_api(logger_, getRunDb_ZebGCfg_pon_ont, db_.handle(), &ont.configuration, &ont.config_index));
        if (custom_layer__is_ont_configured_unsafe(&ont.configuration) != 0) {
            ont.serial = make_serial(ont.configuration.serial);
            BOOST_OUTCOME_TRY(match(ont));
            return ont;
        }
    }
    return std::nullopt;
}

Result<void> OntWalk::finish() const {
    if (!activated_left_.empty()) {
        return ErrorPayload(Error::InvalidState, "The number of received states is greater than requested");
    }
    return core::success();
}

std::vector<const Ont_unactivated_entry*> OntWalk::unclaimed() const {
    std::vector<const Ont_unactivated_entry*> entries;
    for (std::size_t i = 0; i < unactivated_.size(); ++i) {
        if (!claimed_[i]) {
            entries.push_back(&unactivated_[i]);
        }
    }
    return entries;
}

Result<void> OntWalk::match(ConfiguredOnt& ont) {
    if (!activated_left_.empty() && make_serial(activated_left_.front().serial) == ont.serial) {
        ont.state = &activated_left_.front();
        activated_left_ = activated_left_.subspan(1);
        activated_met_.insert(ont.serial);
        return core::success();
    }
    if (activated_left_.empty() && activated_met_.contains(ont.serial)) {
        // Its one state went to another ONT of the same serial.
        return ErrorPayload(Error::InvalidState, "The number of received states is less than requested");
    }
    if (const auto found = unactivated_by_serial_.find(ont.serial); found != unactivated_by_serial_.end()) {
        ont.unactivated = &unactivated_[found->second];
        claimed_[found->second] = true;
    }
    return core::success();
}

} // namespace xpon::api_service
