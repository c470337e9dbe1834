#include "api_service/handlers/monitoring/ont_counter_tables.hpp"
#include "api_service/handlers/monitoring/ont_counters_handler.hpp"

#include <span>

namespace xpon::api_service {

using CountersHandler = MonitoringOntCountersHandler;

namespace {

template <class Record>
Result<void> compose(JsonWriter& array, const CounterRecords<Record>& records,
                     Result<void> (*fill)(JsonWriter& object, const Record&)) {
    for (const auto& record : records) {
        BOOST_OUTCOME_TRY(write_object(array, [&] { return fill(array, *record); }));
    }
    return core::success();
}

/// The object of a kind whose counters have no direction.
template <const auto& table, class Record>
Result<void> fill(JsonWriter& object, const Record& record) {
    BOOST_OUTCOME_TRY(const auto keys, instance_keys(record));
    write_instances(object, keys, record, table);
    if constexpr (requires { record.mc; }) {
        write_gem_groups(object, record, table);
    }
    return core::success();
}

Result<void> fill_nctp(JsonWriter& object, const Ont_gem_port_nctp_pm& record) {
    BOOST_OUTCOME_TRY(const auto keys, instance_keys(record));
    BOOST_OUTCOME_TRY(write_unless_empty(object, downstream_gem_ports_key, [&]() -> Result<void> {
        write_instances(object, keys, record.downstream, counter_tables::nctp_downstream);
        write_gem_groups(object, record, counter_tables::nctp_downstream);
        return core::success();
    }));
    return write_unless_empty(object, upstream_gem_ports_key, [&]() -> Result<void> {
        write_instances(object, keys, record.upstream, counter_tables::nctp_upstream);
        return core::success();
    });
}

using GemPorts = std::span<const Ont_gem_port_counters>;

Result<void> write_gem_ports(JsonWriter& object, GemPorts gem_ports, Gem_port_group group) {
    for (const auto& gem_port : gem_ports) {
        if (gem_port.group == group) {
            const auto key = fmt::format(gem_port_key, gem_port.gem_port);
            BOOST_OUTCOME_TRY(write_record(object, key, gem_port, counter_tables::olt_gem_port));
        }
    }
    return core::success();
}

Result<void> fill_gem_ports(JsonWriter& object, const Ont__get_gem_port_counters_response& record) {
    BOOST_OUTCOME_TRY(const GemPorts gem_ports, bounded_items(record.entries, record.count, "count"));
    for (const auto& gem_port : gem_ports) {
        BOOST_OUTCOME_TRY(bounded_count(gem_port.group, gem_port_broadcast, "group"));
    }
    BOOST_OUTCOME_TRY(write_gem_ports(object, gem_ports, gem_port_unicast));
    BOOST_OUTCOME_TRY(write_unless_empty(object, multicast_ports_key,
                                         [&] { return write_gem_ports(object, gem_ports, gem_port_multicast); }));
    return write_unless_empty(object, broadcast_ports_key,
                              [&] { return write_gem_ports(object, gem_ports, gem_port_broadcast); });
}

Result<void> fill_pon(JsonWriter& object, const Ont__get_pon_counters_response& record) {
    return write_fields(object, record, counter_tables::olt_pon);
}

} // namespace

Result<void> CountersHandler::get_payload_for_pm_history_data(JsonWriter& array,
                                                              const CounterRecords<Ont_gem_port_pm>& records) {
    return compose(array, records, fill<counter_tables::gem_port>);
}

Result<void>
CountersHandler::get_payload_for_nctp_pm_history_data(JsonWriter& array,
                                                      const CounterRecords<Ont_gem_port_nctp_pm>& records) {
    return compose(array, records, fill_nctp);
}

Result<void>
CountersHandler::get_payload_for_eth_pm_history_data(JsonWriter& array,
                                                     const CounterRecords<Ont_eth_pm_history_data>& records) {
    return compose(array, records, fill<counter_tables::ethernet>);
}

Result<void> CountersHandler::get_payload_for_eth_pm_history_data_2(JsonWriter& array,
                                                                    const CounterRecords<Ont_ethernet_pm_2>& records) {
    return compose(array, records, fill<counter_tables::ethernet_2>);
}

Result<void>
CountersHandler::get_payload_for_eth_pm_history_data_3(JsonWriter& array,
                                                       const CounterRecords<Ont_eth_pm_history_data_3>& records) {
    return compose(array, records, fill<counter_tables::ethernet_3>);
}

Result<void> CountersHandler::get_payload_for_gal_eth_pm_history_data(JsonWriter& array,
                                                                      const CounterRecords<Ont_gal_eth_pm>& records) {
    return compose(array, records, fill<counter_tables::gal_ethernet>);
}

Result<void> CountersHandler::get_payload_for_fec_pm_history_data(JsonWriter& array,
                                                                  const CounterRecords<Ont_fec_pm_counters>& records) {
    return compose(array, records, fill<counter_tables::fec>);
}

Result<void> CountersHandler::get_payload_for_eth_frame_ext_pm(JsonWriter& array,
                                                               const CounterRecords<Ont_eth_frame_ext_pm>& records) {
    return compose(array, records, fill_eth_frame_ext_pm);
}

Result<void>
CountersHandler::get_payload_for_gem_port_counters(JsonWriter& array,
                                                   const CounterRecords<Ont__get_gem_port_counters_response>& records) {
    return compose(array, records, fill_gem_ports);
}

Result<void>
CountersHandler::get_payload_for_pon_counters(JsonWriter& array,
                                              const CounterRecords<Ont__get_pon_counters_response>& records) {
    return compose(array, records, fill_pon);
}

Result<void> CountersHandler::fill_eth_frame_ext_pm(JsonWriter& object, const Ont_eth_frame_ext_pm& record) {
    BOOST_OUTCOME_TRY(const auto keys, instance_keys(record));
    BOOST_OUTCOME_TRY(add_eth_frame_ext_pm_counters_to_json(object, upstream_ports_key, keys, record.upstream));
    return add_eth_frame_ext_pm_counters_to_json(object, downstream_ports_key, keys, record.downstream);
}

Result<void> CountersHandler::add_eth_frame_ext_pm_counters_to_json(JsonWriter& object, std::string_view key,
                                                                    const std::vector<std::string>& instances,
                                                                    const Ont_eth_frame_ext_pm::Direction& counters) {
    return write_unless_empty(object, key, [&]() -> Result<void> {
        write_instances(object, instances, counters, counter_tables::frame_extended);
        write_group(object, veip_key, counters.veip, counter_tables::frame_extended);
        return core::success();
    });
}

} // namespace xpon::api_service
