#include "api_service/handlers/commands/ont_action_handler.hpp"

#include "api_service/handlers/commands/device_command.hpp"

#include <fmt/format.h>

namespace xpon::api_service {

using core::Error;
using core::ErrorPayload;
using core::Result;

OntActionHandler::OntActionHandler(const std::shared_ptr<core::ILogger>& logger, const std::shared_ptr<ipc::IIpc>& ipc,
                                   Action action)
    : logger_(logger), ipc_(ipc), action_(std::move(action)) {}

Result<Response> OntActionHandler::operator()(const Request& request, const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(check_session(session, "No session"));
    BOOST_OUTCOME_TRY(const auto ranges, get_ranges(request));
    return answer_to_command(session, logger_, [&] {
        int status = 0;
        for (auto range = ranges.begin(); range != ranges.end() && status == 0; ++range) {
            status = action_(ipc_->raw(), &*range);
        }
        return status;
    });
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
