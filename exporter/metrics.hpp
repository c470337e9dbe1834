#pragma once

#include <cstddef>
#include <string_view>

#include <prometheus/metric_type.h>

namespace xpon::exporter {

/// What is exported, in the order in which it is written.
enum class Metric {
    up,
    info,
    uptime,
    load1,
    load5,
    load15,
    memory_size,
    memory_free,
    disk_size,
    disk_free,
    temperature,
    fan_present,
    fan_fault,
    fan_speed,
    supply_present,
    supply_good,
    supply_mains,
    front_up,
    front_enabled,
    front_speed,
    front_module_present,
    front_module_alarm,
    front_module_temperature,
    front_module_voltage,
    front_module_bias,
    front_module_transmit_power,
    pon_up,
    pon_state,
    pon_module_present,
    pon_module_alarm,
    pon_module_temperature,
    pon_module_voltage,
    pon_module_bias,
    pon_module_transmit_power,
    pon_onts,
    pon_unclaimed_onts,
    pon_leases,
    pon_sessions,
    pon_blocked_sessions,
    pon_groups,
    pon_mac_addresses,
    ont_up,
    ont_state,
    ont_received_power,
    ont_distance,
    ont_received_bytes,
    ont_received_packets,
    ont_transmitted_bytes,
    ont_transmitted_packets,
    ont_bip_units,
    ont_bip_errors,
    ont_fec_codewords,
    ont_fec_corrected,
    ont_fec_uncorrectable,
    ont_delimiter_misses,
    ont_ploam_errors,
    ont_omci_crc_errors,
    ont_interval_fec_corrected,
    ont_interval_fec_uncorrectable,
    ont_interval_lost_packets,
    collector_success,
    collector_duration,
    collector_longest_request,
    requests,
    logins,
    collection_duration,
    collection_time,
    build_info,
    process_cpu,
    process_memory,
    process_descriptors,
    process_start,
};

inline constexpr auto metric_count = static_cast<std::size_t>(Metric::process_start) + 1;

struct MetricDescription {
    Metric metric;
    std::string_view name; ///< base units and endings as Prometheus' naming rules want them
    prometheus::MetricType type;
    std::string_view labels; ///< names in the order of the values, separated by commas
    std::string_view help;
};

const MetricDescription& description_of(Metric metric);

} // namespace xpon::exporter
