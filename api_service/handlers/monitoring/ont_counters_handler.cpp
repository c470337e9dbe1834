#include "api_service/handlers/monitoring/ont_counters_handler.hpp"

#include "api_service/handlers/monitoring/counter_shapes.hpp"
#include "xpon/core/call_sequence.hpp"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace xpon::api_service {

using CountersHandler = MonitoringOntCountersHandler;

struct MonitoringOntCountersHandler::Kind {
    std::string_view path_end;
    Result<std::string> (MonitoringOntCountersHandler::*get_array)(const Bitmap_ont_range& range) const;
    const RouteShape* shape;
};

// clang-format off
constexpr CountersHandler::Kind CountersHandler::kinds[] = {
    {".ont_side.gem_port_performance_monitoring",                   &CountersHandler::get_array<ont_information_gem_port_pm,           Ont_gem_port_pm,                     get_payload_for_pm_history_data>,         &counter_shapes::route<counter_shapes::gem_port>},
    {".ont_side.gem_port_nctp_performance_monitoring",              &CountersHandler::get_array<ont_information_gem_port_nctp_pm,      Ont_gem_port_nctp_pm,                get_payload_for_nctp_pm_history_data>,    &counter_shapes::route<counter_shapes::nctp>},
    {".ont_side.ethernet_performance_monitoring_history_data",      &CountersHandler::get_array<ont_information_eth_pm_history_data,   Ont_eth_pm_history_data,             get_payload_for_eth_pm_history_data>,     &counter_shapes::route<counter_shapes::ethernet>},
    {".ont_side.ethernet_performance_monitoring_history_data_2",    &CountersHandler::get_array<ont_information_ethernet_pm_2,         Ont_ethernet_pm_2,                   get_payload_for_eth_pm_history_data_2>,   &counter_shapes::route<counter_shapes::ethernet_2>},
    {".ont_side.ethernet_performance_monitoring_history_data_3",    &CountersHandler::get_array<ont_information_eth_pm_history_data_3, Ont_eth_pm_history_data_3,           get_payload_for_eth_pm_history_data_3>,   &counter_shapes::route<counter_shapes::ethernet_3>},
    {".ont_side.gal_ethernet_performance_monitoring_history_data",  &CountersHandler::get_array<ont_information_gal_eth_pm,            Ont_gal_eth_pm,                      get_payload_for_gal_eth_pm_history_data>, &counter_shapes::route<counter_shapes::gal_ethernet>},
    {".ont_side.fec_performance_monitoring_history_data",           &CountersHandler::get_array<ont_information_fec_pm,                Ont_fec_pm_counters,                 get_payload_for_fec_pm_history_data>,     &counter_shapes::route<counter_shapes::fec>},
    {".ont_side.ethernet_frame_extended_performance_monitoring",    &CountersHandler::get_array<ont_information_eth_frame_ext_pm,      Ont_eth_frame_ext_pm,                get_payload_for_eth_frame_ext_pm>,        &counter_shapes::route<counter_shapes::frame_extended>},
    {".olt_side.gem_port",                                          &CountersHandler::get_array<ont_information_olt_gem_port,          Ont__get_gem_port_counters_response, get_payload_for_gem_port_counters>,       &counter_shapes::route<counter_shapes::olt_gem_port>},
    {".olt_side.pon",                                               &CountersHandler::get_array<ont_information_olt_pon,               Ont__get_pon_counters_response,      get_payload_for_pon_counters>,            &counter_shapes::route<counter_shapes::olt_pon>},
};
// clang-format on

const MonitoringOntCountersHandler::Kind* MonitoringOntCountersHandler::find_kind(std::string_view path) {
    const auto* const kind =
        std::ranges::find_if(kinds, [&](const Kind& known) { return path.ends_with(known.path_end); });
    return kind == std::end(kinds) ? nullptr : kind;
}

const RouteShape& MonitoringOntCountersHandler::shape_at(std::string_view path) {
    const auto* const kind = find_kind(path);
    return kind == nullptr ? acknowledgement : *kind->shape;
}

Result<Response> MonitoringOntCountersHandler::operator()(const Request& request,
                                                          const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(check_session(session));
    return answer_with_data(session, [&]() -> Result<std::string> {
        const auto* const kind = find_kind(request.path);
        if (kind == nullptr) {
            return ErrorPayload(Error::InvalidInputArg, fmt::format("There are no counters at {}", request.path));
        }
        BOOST_OUTCOME_TRY(const auto range, get_ont_range(request));
        return (this->*kind->get_array)(range);
    });
}

Result<Bitmap_ont_range> MonitoringOntCountersHandler::get_ont_range(const Request& request) const {
    const auto& indices = request.indices;
    const auto all_onts = fmt::format("1-{}", max_onts_per_pon_port);
    Bitmap_ont_range range{};
    if (indices.empty() || indices.size() > 2 || !core::call_c_api(*logger_, [&] {
            return get_parsed_ont_range(indices[0].c_str(), indices.size() == 2 ? indices[1].c_str() : all_onts.c_str(),
                                        &range);
        })) {
        return ErrorPayload(Error::InvalidInputArg, "Indices must contain pon-port numbers and optionally ont numbers");
    }
    return range;
}

Result<CounterRecord<void>> MonitoringOntCountersHandler::get_record(Ont_information_kind kind, std::uint8_t port,
                                                                     std::uint16_t ont) const {
    int status = 0;
    const auto call = [&](auto... args) { return status = custom_layer__get_ont_information_by_index(args...); };
    auto record = fetch_from_peers<void>(call, kind, port, ont);
    if (status != 0) {
        return ErrorPayload(Error::ErrorCApi,
                            fmt::format("custom_layer__get_ont_information_by_index() failed: {}", status));
    }
    BOOST_OUTCOME_TRY(auto given, std::move(record));
    return CounterRecord<void>(given.release(), std::free);
}

template <class Record>
Result<CounterRecords<Record>> MonitoringOntCountersHandler::get_counters(Ont_information_kind kind,
                                                                          const Bitmap_ont_range& range,
                                                                          Bitmap_iterator& iterator) const {
    constexpr std::size_t most = 64; // the records of all ONTs would take several times their text
    CounterRecords<Record> records;
    std::uint8_t port = 0;
    std::uint16_t ont = 0;
    while (records.size() < most && get_next_bitmap_ont_ids(&range, &iterator, &port, &ont) == 0) {
        BOOST_OUTCOME_TRY(auto record,
                          get_record(kind, static_cast<std::uint8_t>(port + 1), static_cast<std::uint16_t>(ont + 1)));
        records.emplace_back(static_cast<Record*>(record.get()), std::free);
        std::ignore = record.release();
    }
    return records;
}

template <Ont_information_kind kind, class Record,
          Result<void> (*get_payload)(JsonWriter& array, const CounterRecords<Record>&)>
Result<std::string> MonitoringOntCountersHandler::get_array(const Bitmap_ont_range& range) const {
    return write_data([&](JsonWriter& array) -> Result<void> {
        const core::CallSequence sequence;
        Bitmap_iterator iterator{};
        array.begin_array();
        for (;;) {
            BOOST_OUTCOME_TRY(const auto records, get_counters<Record>(kind, range, iterator));
            if (records.empty()) {
                break;
            }
            BOOST_OUTCOME_TRY(get_payload(array, records));
        }
        array.end_array();
        return core::success();
    });
}

} // namespace xpon::api_service
