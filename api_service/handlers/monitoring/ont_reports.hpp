#pragma once

#include "api_service/handlers/library_calls.hpp"
#include "xpon/core/logger.hpp"
#include "xpon/core/result.hpp"
#include "xpon/custom_layer/onts.h"
#include "xpon/ipc/ipc.hpp"

#include <memory>
#include <span>

namespace xpon::api_service {

/// Every place where an ONT can be configured.
core::Result<Bitmap_ont_range> get_all_ont_range(core::ILogger& logger);

/// What the device reports of its ONTs.
class OntReports {
public:
    /// The activated ONTs of `range`, and the unactivated ones of all PON ports.
    static core::Result<OntReports> get(core::ILogger& logger, const std::shared_ptr<ipc::IIpc>& ipc,
                                        const Bitmap_ont_range& range);

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
