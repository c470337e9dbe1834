#include "client/oltctl/live/top_view.hpp"

#include "client/oltctl/output/table.hpp"
#include "xpon/client/serial_number.hpp"

#include <algorithm>
#include <limits>
#include <string_view>
#include <utility>

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

// A class B+ receiver of an OLT works down to -28 dBm [G.984.2 Amendment 1].
constexpr double low_dbm = -25;
constexpr double lowest_dbm = -27;
constexpr auto operational = "OPERATIONAL";
constexpr auto absent = "ABSENT"; // configured, and the service knows no state of it

core::JsonTree get(Service& service, const char* path, std::vector<std::string> indices = {}) {
    return std::move(service.ask({.path = path, .method = "get", .indices = std::move(indices)}).data);
}

std::string text_at(const cJSON* row, const char* path) {
    return cell_text(value_at(row, path));
}

double number_at(const cJSON* row, const char* path) {
    const auto* const value = value_at(row, path);
    return cJSON_IsNumber(value) != 0 ? value->valuedouble : 0;
}

Style style_of_light(double dbm) {
    return dbm < lowest_dbm ? Style::bad : dbm < low_dbm ? Style::warning : Style::plain;
}

Style style_of_state(std::string_view state) {
    return state == operational ? Style::good : Style::warning;
}

/// @{ Columns for the sparklines, of what the other cells of a line leave.
std::size_t port_spark_width(std::size_t columns) {
    constexpr std::size_t others = 69;
    return std::clamp<std::size_t>(columns > others ? (columns - others) / 2 : 0, 4, 40);
}
std::size_t ont_spark_width(std::size_t columns) {
    constexpr std::size_t others = 55;
    return std::clamp<std::size_t>(columns > others ? (columns - others) / 3 : 0, 4, 30);
}
/// @}

} // namespace

void TopView::sample(Service& service) {
    sample_system(service);
    sample_ports(service);
    sample_onts(service);
    sample_traffic(service);
    ++samples_;
}

void TopView::sample_system(Service& service) {
    const auto system = get(service, "monitoring.system");
    double hottest = 0;
    const cJSON* sensor = nullptr;
    cJSON_ArrayForEach(sensor, value_at(system.get(), "temp_sensors")) {
        hottest = std::max(hottest, number_at(sensor, "value"));
    }
    unsigned faults = 0;
    const cJSON* fan = nullptr;
    cJSON_ArrayForEach(fan, value_at(system.get(), "fans")) {
        faults += number_at(fan, "is_fault") != 0 || number_at(fan, "is_present") == 0 ? 1U : 0U;
    }
    const auto total = number_at(system.get(), "ram.total");
    health_ = fmt::format("{}  up {}  load {:.2f} {:.2f}  memory {:.0f} %  hottest {:.0f} deg C{}",
                          text_at(system.get(), "device_info.hostname"), text_at(system.get(), "device_info.uptime"),
                          number_at(system.get(), "avg_load.1m"), number_at(system.get(), "avg_load.5m"),
                          total > 0 ? 100 * (1 - number_at(system.get(), "ram.free") / total) : 0, hottest,
                          faults == 0 ? "" : fmt::format("  {} fans failed", faults));
}

void TopView::sample_ports(Service& service) {
    if (port_count_ == 0) {
        port_count_ = static_cast<unsigned>(number_at(get(service, "monitoring.constants").get(), "PON_PORT_COUNT"));
    }
    if (port_count_ == 0) {
        return;
    }
    const auto rows = get(service, "monitoring.interface.pon_port.state", {fmt::format("1-{}", port_count_)});
    const cJSON* row = nullptr;
    cJSON_ArrayForEach(row, rows.get()) {
        auto& port = ports_[static_cast<unsigned>(number_at(row, "port"))];
        const auto state = text_at(row, "state");
        port.has_changed = samples_ > 0 && port.state != state;
        port.state = state;
        port.temperature = text_at(row, "eddi.temperature_c");
        port.power = text_at(row, "eddi.tx_power_dbm");
    }
}

void TopView::sample_onts(Service& service) {
    const auto rows = get(service, "monitoring.interface.ont.state");
    for (auto& [number, port] : ports_) {
        port.operational = port.configured = port.unactivated = 0;
    }
    onts_.clear();
    states_.clear();
    const cJSON* row = nullptr;
    cJSON_ArrayForEach(row, rows.get()) {
        const auto* const light = value_at(row, "ont_info.rssi");
        const bool is_configured = value_at(row, "cfg_port") != nullptr;
        const auto state = text_at(row, "state");
        Ont ont{.number = is_configured ? text_at(row, "cfg_port") + "/" + text_at(row, "cfg_ont_id") : "",
                .serial = client::serial_text(value_at(row, "serial")),
                .state = state.empty() ? absent : state,
                .metres = text_at(row, "ont_info.distance"),
                .description = text_at(row, "description"),
                .rssi_dbm = cJSON_IsNumber(light) != 0 ? std::optional(light->valuedouble) : std::nullopt};
        auto& port = ports_[static_cast<unsigned>(number_at(row, is_configured ? "cfg_port" : "port"))];
        port.configured += is_configured ? 1 : 0;
        port.operational += ont.state == operational ? 1 : 0;
        port.unactivated += is_configured ? 0 : 1;
        ++states_[ont.state];
        auto& seen = seen_[ont.serial];
        seen.has_changed = samples_ > 0 && seen.state != ont.state;
        seen.state = ont.state;
        if (ont.rssi_dbm) {
            seen.rssi_dbm.add(*ont.rssi_dbm);
        }
        onts_.push_back(std::move(ont));
    }
    std::ranges::stable_sort(
        onts_, {}, [](const Ont& ont) { return ont.rssi_dbm.value_or(std::numeric_limits<double>::infinity()); });
}

void TopView::sample_traffic(Service& service) {
    for (auto& [number, port] : ports_) {
        if (port.configured == 0) {
            continue;
        }
        // Port by port, so that other clients of the service get their turn in between.
        const auto rows =
            get(service, "monitoring.interface.ont.counters.olt_side.pon", {fmt::format("{}", number), "1-256"});
        double received = 0;
        double sent = 0;
        const cJSON* row = nullptr;
        cJSON_ArrayForEach(row, rows.get()) {
            received += number_at(row, "Rx Bytes");
            sent += number_at(row, "Tx Bytes");
        }
        const auto now = seconds_now();
        port.received.add(received, now);
        port.sent.add(sent, now);
    }
}

std::vector<Line> TopView::head(std::size_t /*columns*/) const {
    Line onts{{fmt::format("{} ONTs:", onts_.size()), Style::plain}};
    for (const auto& [state, count] : states_) {
        onts.push_back({fmt::format("  {} ", count), Style::title});
        onts.push_back({state, style_of_state(state)});
    }
    return {{{health_, Style::title}}, std::move(onts), {}};
}

Line TopView::line_of(unsigned number, const Port& port, std::size_t columns) const {
    const auto rate = [](const Rate& traffic) {
        return traffic.per_second() ? short_number(*traffic.per_second() * 8) : std::string();
    };
    const auto spark = port_spark_width(columns);
    return {{fmt::format("{:>3}  ", number), Style::plain},
            {fmt::format("{:<9}", port.state), port.has_changed         ? Style::changed
                                               : port.state == "ACTIVE" ? Style::good
                                                                        : Style::warning},
            {fmt::format("{:>5}{:>5}", port.configured, port.operational), Style::plain},
            {fmt::format("{:>5}", port.configured - std::min(port.configured, port.operational)),
             port.configured > port.operational ? Style::warning : Style::faint},
            {fmt::format("{:>5}", port.unactivated), port.unactivated > 0 ? Style::plain : Style::faint},
            {fmt::format("{:>9} ", rate(port.sent)), Style::plain},
            {port.sent.history().sparkline(spark, true), Style::good},
            {fmt::format("{:>8} ", rate(port.received)), Style::plain},
            {port.received.history().sparkline(spark, true), Style::good},
            {fmt::format("{:>7}{:>8}", port.temperature, port.power), Style::plain}};
}

Line TopView::line_of(const Ont& ont, std::size_t columns) const {
    const auto& seen = seen_.at(ont.serial);
    return {{fmt::format("{:<7}{:<14}", ont.number, ont.serial), Style::plain},
            {fmt::format("{:<18}", ont.state), seen.has_changed ? Style::changed : style_of_state(ont.state)},
            {fmt::format("{:>6} ", ont.rssi_dbm ? fmt::format("{:.1f}", *ont.rssi_dbm) : ""),
             style_of_light(ont.rssi_dbm.value_or(0))},
            {seen.rssi_dbm.sparkline(ont_spark_width(columns), false), Style::faint},
            {fmt::format("{:>7}  {}", ont.metres, ont.description), Style::plain}};
}

std::vector<Line> TopView::body(std::size_t columns) const {
    const auto spark = port_spark_width(columns);
    std::vector<Line> lines{
        {{fmt::format("{:>3}  {:<9}{:>5}{:>5}{:>5}{:>5}{:>9} {:{}}{:>8} {:{}}{:>7}{:>8}", "PON", "State", "ONTs", "up",
                      "down", "new", "Down b/s", "", spark, "Up b/s", "", spark, "deg C", "Tx dBm"),
          Style::title}}};
    for (const auto& [number, port] : ports_) {
        lines.push_back(line_of(number, port, columns));
    }
    lines.emplace_back();
    lines.push_back({{fmt::format("{:<7}{:<14}{:<18}{:>6} {:{}}{:>7}  {}", "ONT", "Serial", "State", "dBm", "",
                                  ont_spark_width(columns), "Metres", "Description"),
                      Style::title}});
    for (const auto& ont : onts_) {
        lines.push_back(line_of(ont, columns));
    }
    return lines;
}

} // namespace xpon::oltctl
