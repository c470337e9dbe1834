#pragma once

#include "api_service/core_names.hpp"
#include "api_service/handlers/handler_frame.hpp"
#include "xpon/custom_layer/onts.h"

#include <span>

namespace xpon::api_service {

/// Every place where an ONT can be configured.
Result<Bitmap_ont_range> get_all_ont_range(ILogger& logger);

/// What the device reports of its ONTs.
class OntReports {
public:
    /// The activated ONTs of `range`, and the unactivated ones of all PON ports.
    static Result<OntReports> get(ILogger& logger, const HandlerFrame& frame, const Bitmap_ont_range& range);

    /// Ascending by configured place.
    [[nodiscard]] std::span<const Ont__state_info> activated() const {
        return {states_->entries, states_->count};
    }
    /// Ascending by port where they are seen.
    [[nodiscard]] std::span<const Ont_unactivated_entry> unactivated() const {
        return {unactivated_->entries, unactivated_->count};
    }

private:
    OntReports(LibraryBuffer<Ont__get_state_info_response> states, LibraryBuffer<Ont_unactivated_info> unactivated)
        : states_(std::move(states)), unactivated_(std::move(unactivated)) {}

    LibraryBuffer<Ont__get_state_info_response> states_;
    LibraryBuffer<Ont_unactivated_info> unactivated_;
};

} // namespace xpon::api_service
