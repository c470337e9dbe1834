#include "exporter/json_values.hpp"
#include "exporter/readings.hpp"

#include <cmath>
#include <regex>
#include <string>

namespace xpon::exporter {
namespace {

constexpr double mebibyte = 1024.0 * 1024.0;
constexpr double seconds_per_minute = 60;

void add(Samples& samples, Metric metric, std::optional<double> value, double unit = 1,
         Samples::Labels labels = Samples::Labels::none) {
    if (value) {
        samples.add(metric, *value * unit, labels);
    }
}

/// "3 days, 01:12:01", and without the days.
std::optional<double> seconds_of(const std::string& uptime) {
    static const std::regex form(R"((?:(\d+) days?, *)?(\d+):(\d+):(\d+))");
    std::smatch parts;
    if (!std::regex_match(uptime, parts, form)) {
        return std::nullopt;
    }
    const auto part = [&](std::size_t index) { return parts[index].matched ? std::stod(parts[index]) : 0.0; };
    return ((part(1) * 24 + part(2)) * 60 + part(3)) * 60 + part(4);
}

std::string without_trailing_blanks(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

/// Bytes per second of "10G", "1G" or "100M".
std::optional<double> bytes_per_second(const std::string& speed) {
    static const std::regex form(R"((\d+(?:\.\d+)?)([MG]))");
    std::smatch parts;
    if (!std::regex_match(speed, parts, form)) {
        return std::nullopt;
    }
    return std::stod(parts[1]) * (parts[2] == "G" ? 1e9 : 1e6) / 8;
}

struct ModuleMetrics {
    Metric present, alarm, temperature, voltage, bias, transmit_power;
};

void read_module(const cJSON* port, const ModuleMetrics& metrics, Samples::Labels labels, Samples& samples) {
    static const std::map<std::string, double> conditions{
        {"Present", 0}, {"Warning", 1}, {"Alarm", 2}, {"ExcludePolling", 3}};
    const auto condition = text(port, "sfp_condition");
    if (condition.empty()) {
        return;
    }
    samples.add(metrics.present, condition == "Absent" ? 0 : 1, labels);
    if (const auto known = conditions.find(condition); known != conditions.end()) {
        samples.add(metrics.alarm, known->second, labels);
    }
    const auto* measured = member(port, "eddi");
    add(samples, metrics.temperature, number(measured, "temperature_c"), 1, labels);
    add(samples, metrics.voltage, number(measured, "voltage_v"), 1, labels);
    add(samples, metrics.bias, number(measured, "tx_bias_current_ma"), 1e-3, labels);
    auto power = number(measured, "tx_power_dbm");
    if (const auto milliwatts = number(measured, "tx_power_mw"); milliwatts && *milliwatts > 0) {
        power = 10 * std::log10(*milliwatts);
    }
    add(samples, metrics.transmit_power, power, 1, labels);
}

} // namespace

void read_system(const cJSON* data, Samples& samples) {
    const auto* info = member(data, "device_info");
    const auto* factory = member(data, "factory_info");
    samples.add(Metric::info, 1,
                samples.labels({text(factory, "device_type"), text(factory, "board_version"),
                                text(factory, "serial_number"), text(factory, "mac_address"), text(info, "hostname"),
                                text(info, "active_fw"), text(info, "inactive_fw")}));
    add(samples, Metric::uptime, seconds_of(text(info, "uptime")));
    const auto* load = member(data, "avg_load");
    add(samples, Metric::load1, number(load, "1m"));
    add(samples, Metric::load5, number(load, "5m"));
    add(samples, Metric::load15, number(load, "15m"));
    add(samples, Metric::memory_size, number(member(data, "ram"), "total"), mebibyte);
    add(samples, Metric::memory_free, number(member(data, "ram"), "free"), mebibyte);
    add(samples, Metric::disk_size, number(member(data, "disk"), "total"), mebibyte);
    add(samples, Metric::disk_free, number(member(data, "disk"), "free"), mebibyte);
    const cJSON* item = nullptr;
    cJSON_ArrayForEach(item, member(data, "temp_sensors")) {
        add(samples, Metric::temperature, number(item, "value"), 1,
            samples.labels({without_trailing_blanks(text(item, "id"))}));
    }
    int position = 0;
    cJSON_ArrayForEach(item, member(data, "fans")) {
        const auto labels = samples.labels({std::to_string(++position)});
        const auto is_present = number(item, "is_present");
        add(samples, Metric::fan_present, is_present, 1, labels);
        if (is_present == 1) {
            add(samples, Metric::fan_fault, number(item, "is_fault"), 1, labels);
            add(samples, Metric::fan_speed, number(item, "rate_rps"), seconds_per_minute, labels);
        }
    }
    position = 0;
    cJSON_ArrayForEach(item, member(data, "power_sources")) {
        const auto labels = samples.labels({std::to_string(++position)});
        const auto is_present = number(item, "is_present");
        add(samples, Metric::supply_present, is_present, 1, labels);
        if (is_present == 1) {
            add(samples, Metric::supply_good, number(item, "is_power_good"), 1, labels);
            add(samples, Metric::supply_mains, number(item, "is_220v_present"), 1, labels);
        }
    }
}

void read_front_ports(const cJSON* data, Samples& samples) {
    constexpr ModuleMetrics module{Metric::front_module_present,     Metric::front_module_alarm,
                                   Metric::front_module_temperature, Metric::front_module_voltage,
                                   Metric::front_module_bias,        Metric::front_module_transmit_power};
    const cJSON* port = nullptr;
    cJSON_ArrayForEach(port, data) {
        const auto labels = samples.labels({std::to_string(static_cast<int>(number(port, "port").value_or(0)))});
        if (const auto status = text(port, "status"); !status.empty()) {
            samples.add(Metric::front_up, status == "UP" ? 1 : 0, labels);
            samples.add(Metric::front_enabled, status == "SHUTDOWN" ? 0 : 1, labels);
        }
        add(samples, Metric::front_speed, bytes_per_second(text(port, "speed")), 1, labels);
        read_module(port, module, labels, samples);
    }
}

void read_pon_ports(const cJSON* data, Samples& samples) {
    constexpr ModuleMetrics module{Metric::pon_module_present,     Metric::pon_module_alarm,
                                   Metric::pon_module_temperature, Metric::pon_module_voltage,
                                   Metric::pon_module_bias,        Metric::pon_module_transmit_power};
    static const std::map<std::string, double> states{
        {"DISABLED", 0}, {"NO_MODULE", 1}, {"STARTING", 2}, {"ACTIVE", 3}, {"FAULT", 4}};
    constexpr double unknown_state = 255;
    const cJSON* port = nullptr;
    cJSON_ArrayForEach(port, data) {
        const auto labels = samples.labels({std::to_string(static_cast<int>(number(port, "port").value_or(0)))});
        if (const auto state = text(port, "state"); !state.empty()) {
            const auto known = states.find(state);
            samples.add(Metric::pon_up, state == "ACTIVE" ? 1 : 0, labels);
            samples.add(Metric::pon_state, known == states.end() ? unknown_state : known->second, labels);
        }
        read_module(port, module, labels, samples);
    }
}

} // namespace xpon::exporter
