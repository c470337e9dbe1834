#pragma once

#include "api_service/handlers/handler_frame.hpp"
#include "api_service/protocol/json_writer.hpp"
#include "xpon/custom_layer/ont_counters.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace xpon::api_service {

/// A record as the custom layer allocates it, released with free().
template <class Record>
using CounterRecord = std::unique_ptr<Record, void (*)(void*)>;

/// One for each of some ONTs, ascending by (port, ONT). None is null.
template <class Record>
using CounterRecords = std::vector<CounterRecord<Record>>;

/// The counters of the ONTs of a range. One handler serves all kinds of counters: which it is follows from the
/// request's path.
class MonitoringOntCountersHandler : HandlerFrame {
public:
    using HandlerFrame::HandlerFrame;

    /// That of the kind of counters which the path ends with.
    static const RouteShape& shape_at(std::string_view path);

    /// An array with an object for each ONT of the range, also for those that have no counters.
    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const;

    // Each writes an object for each record of its kind. A record that claims more instances than it has place for is
    // an error.

    static Result<void> get_payload_for_pm_history_data(JsonWriter& array,
                                                        const CounterRecords<Ont_gem_port_pm>& records);
    static Result<void> get_payload_for_nctp_pm_history_data(JsonWriter& array,
                                                             const CounterRecords<Ont_gem_port_nctp_pm>& records);
    static Result<void> get_payload_for_eth_pm_history_data(JsonWriter& array,
                                                            const CounterRecords<Ont_eth_pm_history_data>& records);
    static Result<void> get_payload_for_eth_pm_history_data_2(JsonWriter& array,
                                                              const CounterRecords<Ont_ethernet_pm_2>& records);
    static Result<void> get_payload_for_eth_pm_history_data_3(JsonWriter& array,
                                                              const CounterRecords<Ont_eth_pm_history_data_3>& records);
    static Result<void> get_payload_for_gal_eth_pm_history_data(JsonWriter& array,
                                                                const CounterRecords<Ont_gal_eth_pm>& records);
    static Result<void> get_payload_for_fec_pm_history_data(JsonWriter& array,
                                                            const CounterRecords<Ont_fec_pm_counters>& records);
    static Result<void> get_payload_for_eth_frame_ext_pm(JsonWriter& array,
                                                         const CounterRecords<Ont_eth_frame_ext_pm>& records);
    static Result<void>
    get_payload_for_gem_port_counters(JsonWriter& array,
                                      const CounterRecords<Ont__get_gem_port_counters_response>& records);
    static Result<void> get_payload_for_pon_counters(JsonWriter& array,
                                                     const CounterRecords<Ont__get_pon_counters_response>& records);

private:
    struct Kind;
    static const Kind kinds[];

    /// Null for a path that ends with none.
    static const Kind* find_kind(std::string_view path);

    [[nodiscard]] Result<Bitmap_ont_range> get_ont_range(const Request& request) const;
    /// The records of the next ONTs of the range; none after the last.
    template <class Record>
    [[nodiscard]] Result<CounterRecords<Record>> get_counters(Ont_information_kind kind, const Bitmap_ont_range& range,
                                                              Bitmap_iterator& iterator) const;
    [[nodiscard]] Result<CounterRecord<void>> get_record(Ont_information_kind kind, std::uint8_t port,
                                                         std::uint16_t ont) const;
    template <Ont_information_kind kind, class Record,
              Result<void> (*get_payload)(JsonWriter& array, const CounterRecords<Record>&)>
    [[nodiscard]] Result<std::string> get_array(const Bitmap_ont_range& range) const;

    static Result<void> add_eth_frame_ext_pm_counters_to_json(JsonWriter& object, std::string_view key,
                                                              const std::vector<std::string>& instances,
                                                              const Ont_eth_frame_ext_pm::Direction& counters);
    static Result<void> fill_eth_frame_ext_pm(JsonWriter& object, const Ont_eth_frame_ext_pm& record);
};

} // namespace xpon::api_service
