#include "api_service/handlers/monitoring/ont_reports.hpp"

#include "xpon/core/c_status.hpp"

#include <utility>

namespace xpon::api_service {
namespace {

Result<LibraryBuffer<Ont__get_state_info_response>> get_states_info(const HandlerFrame& frame,
                                                                    const Bitmap_ont_range& range) {
    BOOST_OUTCOME_TRY(auto states, frame.fetch_list_from_peers<Ont__get_state_info_response>(
                                       custom_layer__get_ont_state_info_by_range, &range));
    if (states->count > max_configured_onts) {
        return ErrorPayload(Error::InvalidState, "The number of received states is greater than requested");
    }
    return states;
}

Result<LibraryBuffer<Ont_unactivated_info>> get_all_unactivated_ont(ILogger& logger, const HandlerFrame& frame) {
    Bitmap_pon_port_range ports{};
    BOOST_OUTCOME_TRY(core::call_c_api(logger, prepare_bitmap_pon_port, &ports));
    bitfield_reset(ports.bits, ports.size);
    bitfield_invert(ports.bits, ports.size);
    return frame.fetch_list_from_peers<Ont_unactivated_info>(custom_layer__get_ont_unactivated_by_range, &ports);
}

} // namespace

Result<Bitmap_ont_range> get_all_ont_range(ILogger& logger) {
    Bitmap_ont_range range{};
    BOOST_OUTCOME_TRY(core::call_c_api(logger, prepare_bitmap_ont, &range));
    bitfield_reset(range.bits, range.size);
    bitfield_invert(range.bits, range.size);
    return range;
}

Result<OntReports> OntReports::get(ILogger& logger, const HandlerFrame& frame, const Bitmap_ont_range& range) {
    BOOST_OUTCOME_TRY(auto states, get_states_info(frame, range));
    BOOST_OUTCOME_TRY(auto unactivated, get_all_unactivated_ont(logger, frame));
    return OntReports(std::move(states), std::move(unactivated));
}

} // namespace xpon::api_service
