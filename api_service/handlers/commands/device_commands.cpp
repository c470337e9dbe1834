#include "api_service/handlers/commands/device_commands.hpp"

#include "xpon/custom_layer/commands.h"

#include <fmt/format.h>

namespace xpon::api_service {

Result<Response> RebootHandler::operator()(const Request&, const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(check_session(session));
    return answer_to_command(session, custom_layer__reboot, reboot_now);
}

Result<Response> ReconfigureOltHandler::operator()(const Request&, const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(check_session(session));
    return answer_to_command(session, custom_layer__reconfigure_olt);
}

Result<Response> ReconfigurePonPortHandler::operator()(const Request& request,
                                                       const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(check_session(session));
    BOOST_OUTCOME_TRY(const auto ports, get_port_range(request, get_parsed_pon_port_range));
    return answer_to_peer_command(session, custom_layer__reconfigure_pon_port, &ports);
}

OntActionHandler::OntActionHandler(const std::shared_ptr<ILogger>& logger, const std::shared_ptr<ipc::IIpc>& ipc,
                                   Action action)
    : HandlerFrame(logger, ipc), action_(std::move(action)) {}

Result<Response> OntActionHandler::operator()(const Request& request, const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(check_session(session));
    BOOST_OUTCOME_TRY(const auto ranges, get_ranges(request));
    auto response = Response::make_success_response(session, logger_);
    for (const auto& range : ranges) {
        BOOST_OUTCOME_TRY(call_peers(action_, &range));
    }
    return response;
}

Result<std::vector<Bitmap_ont_range>> OntActionHandler::get_ranges(const Request& request) const {
    const auto& indices = request.indices;
    if (indices.empty()) {
        return ErrorPayload(Error::InvalidInputArg, "Indices must contain some elements");
    }
    // A set costs half a kilobyte and its action a round trip: no more of them than there can be ONTs.
    if (indices.size() > max_configured_onts) {
        return ErrorPayload(Error::InvalidInputArg,
                            fmt::format("Indices must contain no more than {} elements", max_configured_onts));
    }
    std::vector<Bitmap_ont_range> ranges;
    ranges.reserve(indices.size());
    for (const auto& text : indices) {
        auto& range = ranges.emplace_back();
        BOOST_OUTCOME_TRY(core::call_c_api(*logger_, [&] { return get_parsed_ont_range(text.c_str(), &range); }));
    }
    return ranges;
}

} // namespace xpon::api_service
