#include "exporter/metrics.hpp"

#include <array>
#include <cstddef>

namespace xpon::exporter {
namespace {

constexpr auto gauge = prometheus::MetricType::Gauge;
constexpr auto counter = prometheus::MetricType::Counter;

// An ONT's received bytes are those that the OLT has received from it, as with any interface of a node.
constexpr std::array<MetricDescription, metric_count> descriptions{{
    {Metric::up, "olt_up", gauge, "", "1: the OLT's service has answered this collection; 0: it has answered nothing"},
    {Metric::info, "olt_info", gauge,
     "device_type,board_version,serial_number,mac_address,hostname,firmware,standby_firmware",
     "The device and its versions; always 1"},
    {Metric::uptime, "olt_uptime_seconds", gauge, "", "Since the OLT has started"},
    {Metric::load1, "olt_load1", gauge, "", "Load average over 1 minute"},
    {Metric::load5, "olt_load5", gauge, "", "Load average over 5 minutes"},
    {Metric::load15, "olt_load15", gauge, "", "Load average over 15 minutes"},
    {Metric::memory_size, "olt_memory_size_bytes", gauge, "", "Main memory"},
    {Metric::memory_free, "olt_memory_free_bytes", gauge, "", "Main memory that is free"},
    {Metric::disk_size, "olt_disk_size_bytes", gauge, "", "Disk space"},
    {Metric::disk_free, "olt_disk_free_bytes", gauge, "", "Disk space that is free"},
    {Metric::temperature, "olt_temperature_celsius", gauge, "sensor", "What a sensor of the board reads"},
    {Metric::fan_present, "olt_fan_present", gauge, "fan", "1: the fan is plugged in"},
    {Metric::fan_fault, "olt_fan_fault", gauge, "fan", "1: the fan is faulty; absent without the fan"},
    {Metric::fan_speed, "olt_fan_rpm", gauge, "fan", "Revolutions per minute; absent without the fan"},
    {Metric::supply_present, "olt_power_supply_present", gauge, "supply", "1: the power supply is plugged in"},
    {Metric::supply_good, "olt_power_supply_good", gauge, "supply",
     "1: the supply gives good power; absent without the supply"},
    {Metric::supply_mains, "olt_power_supply_mains_present", gauge, "supply",
     "1: mains voltage is there; absent without the supply"},
    {Metric::front_up, "olt_front_port_up", gauge, "port", "1: the front port has a link"},
    {Metric::front_enabled, "olt_front_port_enabled", gauge, "port", "0: the front port is shut down by configuration"},
    {Metric::front_speed, "olt_front_port_speed_bytes", gauge, "port",
     "Bytes per second of the link; absent without one"},
    {Metric::front_module_present, "olt_front_port_module_present", gauge, "port", "1: a module is plugged in"},
    {Metric::front_module_alarm, "olt_front_port_module_alarm", gauge, "port",
     "What the OLT says of the module: 0: fine, 1: warning, 2: alarm, 3: excluded from polling"},
    {Metric::front_module_temperature, "olt_front_port_module_temperature_celsius", gauge, "port",
     "What the module measures; absent when it measures nothing"},
    {Metric::front_module_voltage, "olt_front_port_module_voltage_volts", gauge, "port", "Supply of the module"},
    {Metric::front_module_bias, "olt_front_port_module_bias_amperes", gauge, "port", "Bias current of the laser"},
    {Metric::front_module_transmit_power, "olt_front_port_module_transmit_power_dbm", gauge, "port",
     "Light that the module sends"},
    {Metric::pon_up, "olt_pon_port_up", gauge, "port", "1: the PON port is active"},
    {Metric::pon_state, "olt_pon_port_state", gauge, "port",
     "0: disabled, 1: no module, 2: starting, 3: active, 4: fault, 255: a text unknown to the exporter"},
    {Metric::pon_module_present, "olt_pon_port_module_present", gauge, "port", "1: a module is plugged in"},
    {Metric::pon_module_alarm, "olt_pon_port_module_alarm", gauge, "port",
     "What the OLT says of the module: 0: fine, 1: warning, 2: alarm, 3: excluded from polling"},
    {Metric::pon_module_temperature, "olt_pon_port_module_temperature_celsius", gauge, "port",
     "What the module measures; absent when it measures nothing"},
    {Metric::pon_module_voltage, "olt_pon_port_module_voltage_volts", gauge, "port", "Supply of the module"},
    {Metric::pon_module_bias, "olt_pon_port_module_bias_amperes", gauge, "port", "Bias current of the laser"},
    {Metric::pon_module_transmit_power, "olt_pon_port_module_transmit_power_dbm", gauge, "port",
     "Light that the module sends"},
    {Metric::pon_onts, "olt_pon_port_onts", gauge, "port,state",
     "Configured ONTs of the port by state; absent: not seen at all"},
    {Metric::pon_unclaimed_onts, "olt_pon_port_unclaimed_onts", gauge, "port",
     "ONTs that the port sees and that are not configured"},
    {Metric::pon_leases, "olt_pon_port_dhcp_leases", gauge, "port", "DHCP leases of hosts behind the port"},
    {Metric::pon_sessions, "olt_pon_port_pppoe_sessions", gauge, "port", "PPPoE sessions behind the port"},
    {Metric::pon_blocked_sessions, "olt_pon_port_pppoe_blocked_clients", gauge, "port",
     "PPPoE clients that have to wait before they may try again"},
    {Metric::pon_groups, "olt_pon_port_multicast_groups", gauge, "port", "Multicast groups that the port has joined"},
    {Metric::pon_mac_addresses, "olt_pon_port_mac_addresses", gauge, "port", "MAC addresses learned behind the port"},
    {Metric::ont_up, "olt_ont_up", gauge, "port,ont,serial", "1: the ONT is in operation"},
    {Metric::ont_state, "olt_ont_state", gauge, "port,ont,serial",
     "0: unknown, 1: initial, 2: standby, 3: serial number, 4: ranging, 5: authentication, 6: MIB upload, "
     "7: configuring, 8: operational, 9: authentication failed, 10: configuration failed, 11: popup, "
     "12: emergency stop, 13: disabled, 14: unactivated, 15: not seen, 255: a text unknown to the exporter"},
    {Metric::ont_received_power, "olt_ont_received_power_dbm", gauge, "port,ont,serial",
     "Light of the ONT at the OLT; absent when it is not in operation"},
    {Metric::ont_distance, "olt_ont_distance_meters", gauge, "port,ont,serial", "Length of fibre up to the ONT"},
    {Metric::ont_received_bytes, "olt_ont_receive_bytes_total", counter, "port,ont,serial",
     "Bytes from the ONT, since its activation as all its counters"},
    {Metric::ont_received_packets, "olt_ont_receive_packets_total", counter, "port,ont,serial", "Packets from the ONT"},
    {Metric::ont_transmitted_bytes, "olt_ont_transmit_bytes_total", counter, "port,ont,serial", "Bytes to the ONT"},
    {Metric::ont_transmitted_packets, "olt_ont_transmit_packets_total", counter, "port,ont,serial",
     "Packets to the ONT"},
    {Metric::ont_bip_units, "olt_ont_bip_units_total", counter, "port,ont,serial",
     "Units from the ONT that bit interleaved parity has covered"},
    {Metric::ont_bip_errors, "olt_ont_bip_errors_total", counter, "port,ont,serial", "Of these, errors"},
    {Metric::ont_fec_codewords, "olt_ont_fec_codewords_total", counter, "port,ont,serial",
     "FEC code words from the ONT"},
    {Metric::ont_fec_corrected, "olt_ont_fec_corrected_codewords_total", counter, "port,ont,serial",
     "Of these, code words with errors that were corrected"},
    {Metric::ont_fec_uncorrectable, "olt_ont_fec_uncorrectable_codewords_total", counter, "port,ont,serial",
     "Of these, code words with too many errors"},
    {Metric::ont_delimiter_misses, "olt_ont_delimiter_misses_total", counter, "port,ont,serial",
     "Bursts of the ONT whose delimiter was not found"},
    {Metric::ont_ploam_errors, "olt_ont_ploam_errors_total", counter, "port,ont,serial", "PLOAM messages with errors"},
    {Metric::ont_omci_crc_errors, "olt_ont_omci_crc_errors_total", counter, "port,ont,serial",
     "OMCI messages with a wrong checksum"},
    {Metric::ont_interval_fec_corrected, "olt_ont_interval_fec_corrected_codewords", gauge, "port,ont,serial",
     "Downstream code words that the ONT corrected in the last 15 minutes that have ended"},
    {Metric::ont_interval_fec_uncorrectable, "olt_ont_interval_fec_uncorrectable_codewords", gauge, "port,ont,serial",
     "Downstream code words with too many errors in the last 15 minutes that have ended"},
    {Metric::ont_interval_lost_packets, "olt_ont_interval_lost_packets", gauge, "port,ont,serial",
     "Packets that GEM ports of the ONT lost in the last 15 minutes that have ended"},
    {Metric::collector_success, "olt_exporter_collector_success", gauge, "collector",
     "1: all requests of the collector were answered; 0: what is missing is absent"},
    {Metric::collector_duration, "olt_exporter_collector_duration_seconds", gauge, "collector",
     "All requests of the collector together"},
    {Metric::collector_longest_request, "olt_exporter_collector_longest_request_seconds", gauge, "collector",
     "How long other clients of the OLT have waited for one request at most"},
    {Metric::requests, "olt_exporter_requests_total", counter, "collector,outcome", "Requests by how they ended"},
    {Metric::logins, "olt_exporter_logins_total", counter, "outcome", "Logins by how they ended"},
    {Metric::collection_duration, "olt_exporter_collection_duration_seconds", gauge, "",
     "The whole collection with its pauses"},
    {Metric::collection_time, "olt_exporter_collection_timestamp_seconds", gauge, "",
     "When the collection ended; scrapes that overlap share one"},
    {Metric::build_info, "olt_exporter_build_info", gauge, "version", "The exporter's version; always 1"},
    {Metric::process_cpu, "process_cpu_seconds_total", counter, "", "User and system time of the exporter"},
    {Metric::process_memory, "process_resident_memory_bytes", gauge, "", "Resident memory of the exporter"},
    {Metric::process_descriptors, "process_open_fds", gauge, "", "Open descriptors of the exporter"},
    {Metric::process_start, "process_start_time_seconds", gauge, "", "When the exporter has started"},
}};

consteval bool is_in_order() {
    for (std::size_t i = 0; i < descriptions.size(); ++i) {
        if (descriptions.at(i).metric != static_cast<Metric>(i)) {
            return false;
        }
    }
    return true;
}
static_assert(is_in_order());

} // namespace

const MetricDescription& description_of(Metric metric) {
    return descriptions.at(static_cast<std::size_t>(metric));
}

} // namespace xpon::exporter
