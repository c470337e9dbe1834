#include "simulator/reports/board_report.hpp"

#include "xpon/peer_side/fixed_text.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <ctime>
#include <numbers>

namespace xpon::simulator {
namespace {

using Where = FaultTarget::Where;

constexpr unsigned fans = 4;
constexpr double slowest_fan_rps = 60;
constexpr double fastest_fan_rps = 180;

FaultTarget numbered(unsigned number) {
    return {.where = Where::number, .port = static_cast<std::uint16_t>(number)};
}

/// How busy the OLT's controller is with its ONTs.
struct Activity {
    unsigned in_service = 0;
    PlantTime first_activating = never; ///< when the first of those that are on their way into service went on
    PlantTime last_activation = -never; ///< when an ONT last came into service

    explicit Activity(const Plant& plant) {
        for (const auto& ont : plant.onts()) {
            if (is_activating(ont.point.state)) {
                first_activating = std::min(first_activating, ont.point.since);
            }
            if (ont.point.state == ont_operational) {
                ++in_service;
                last_activation = std::max(last_activation, ont.point.since);
            }
        }
    }

    /// The load average over so many seconds.
    [[nodiscard]] double load(const Plant& plant, double window_s) const {
        constexpr double idle = 0.2;
        constexpr double activating = 0.8;
        double share = 0;
        if (first_activating != never) {
            share = 1 - std::exp(-seconds_of(plant.now() - first_activating) / window_s);
        } else if (in_service != 0) {
            constexpr double activation_s = 60; // what an average has seen of it when it ends
            share = (1 - std::exp(-activation_s / window_s)) *
                    std::exp(-seconds_of(plant.now() - last_activation) / window_s);
        }
        return idle + in_service / 1000.0 + activating * share + housekeeping(plant, window_s);
    }

private:
    /// What the daemons do by themselves, now more and now less: as averaged over so many seconds, which evens out the
    /// quick changes and lags behind the slow ones.
    static double housekeeping(const Plant& plant, double window_s) {
        double sum = 0;
        for (const double period_s : {140.0, 780.0, 5400.0}) {
            constexpr double amplitude = 0.05;
            const double frequency = 2 * std::numbers::pi / period_s;
            const double phase = plant.random().between(0, 2 * std::numbers::pi, Purpose::load_phase,
                                                        {static_cast<std::uint64_t>(period_s)});
            const double lag = std::atan(frequency * window_s);
            sum += amplitude * std::cos(lag) * std::sin(frequency * seconds_of(plant.now()) + phase - lag);
        }
        return sum;
    }
};

double sensor_value(const Plant& plant, unsigned id, double load) {
    constexpr double ambient_c = 25;
    constexpr double module_c = 10;
    constexpr std::array part_c{module_c, module_c, module_c, 20.0, 15.0}; // by Brd_api__temp_id
    constexpr double missing_fan_c = 6;
    constexpr double busy_c = 4;
    if (const auto* const fault = plant.faults().find(FaultKind::temperature, numbered(id))) {
        return fault->value;
    }
    const auto missing = plant.faults().count(FaultKind::fan_failed) + plant.faults().count(FaultKind::fan_absent);
    constexpr std::uint64_t drift_key = 1000;
    return ambient_c + part_c.at(id) + busy_c * std::min(load, 1.0) +
           drift(plant.random(), drift_key + id, plant.now()) + missing_fan_c * static_cast<double>(missing);
}

void put_sensors(System_environment_data& data, const Plant& plant) {
    data.temp_sensor_count = brd_api__temp_pon_chip + 1;
    for (unsigned id = 0; id < data.temp_sensor_count; ++id) {
        auto& sensor = data.temp_sensors[id];
        sensor.id = static_cast<Brd_api__temp_id>(id);
        sensor.value = static_cast<std::int8_t>(std::lround(sensor_value(plant, id, data.load_5m)));
    }
}

/// The speed that the fan control asks for.
double wanted_fan_rate(const FanSettings& settings, double hottest) {
    if (settings.manual) {
        return fastest_fan_rps * settings.manual_percent / 100;
    }
    constexpr double rps_per_degree = 6;
    const double slowest = std::max(slowest_fan_rps, fastest_fan_rps * settings.min_percent / 100);
    return std::clamp(slowest + rps_per_degree * (hottest - settings.target_temp_c), slowest, fastest_fan_rps);
}

void put_fans(System_environment_data& data, const Plant& plant) {
    const auto* const hottest =
        std::max_element(data.temp_sensors, data.temp_sensors + data.temp_sensor_count,
                         [](const auto& left, const auto& right) { return left.value < right.value; });
    const double rate = wanted_fan_rate(plant.configuration().fans, hottest->value);
    data.fan_count = fans;
    for (unsigned fan = 1; fan <= fans; ++fan) {
        const bool is_present = !plant.faults().has(FaultKind::fan_absent, numbered(fan));
        const bool is_fault = is_present && plant.faults().has(FaultKind::fan_failed, numbered(fan));
        // Fans of one kind differ a little.
        const double own = std::clamp(rate * (0.97 + 0.01 * fan), slowest_fan_rps, fastest_fan_rps);
        data.fans[fan - 1] = {static_cast<std::uint8_t>(is_fault), static_cast<std::uint8_t>(is_present),
                              is_present && !is_fault ? static_cast<std::uint16_t>(std::lround(own))
                                                      : std::uint16_t{0}};
    }
}

void put_supplies(System_environment_data& data, const Plant& plant) {
    const auto& board = plant.parameters().plant->board;
    for (unsigned number = 1; number <= std::size(data.power_sources); ++number) {
        if (number == 2 && !plant.faults().has(FaultKind::psu2_present, {})) {
            continue;
        }
        auto& supply = data.power_sources[number - 1];
        const bool is_good = !plant.faults().has(FaultKind::psu_failed, numbered(number));
        supply.is_present = 1;
        supply.is_power_good = is_good ? 1 : 0;
        supply.is_220v_present = is_good && board.supply_type == brd__ps_ac ? 1 : 0;
        supply.is_read_info = 1;
        supply.is_required_reset = is_good ? 0 : 1;
        supply.type = board.supply_type;
        put_text(supply.model, board.supply_model);
        put_text(supply.serial, board.supply_serial);
        // Two supplies of one OLT, two numbers.
        supply.serial[0] = static_cast<char>('R' + number);
        put_text(supply.version, board.supply_version);
        put_text(supply.revision, board.supply_revision);
        put_text(supply.date, board.supply_date);
    }
}

} // namespace

System_environment_data report_environment(const Plant& plant) {
    constexpr float base_ram_mib = 900;
    constexpr float ram_per_ont_mib = 0.2F;
    const auto& board = plant.parameters().plant->board;
    const Activity activity(plant);
    System_environment_data data{};
    data.ram_total = board.ram_mib;
    const float used = base_ram_mib + ram_per_ont_mib * static_cast<float>(activity.in_service);
    // In quarters, which a float holds exactly.
    data.ram_free = std::floor((board.ram_mib - used) * 4) / 4;
    data.disk_total = board.disk_mib;
    data.disk_free = board.disk_mib - board.base_disk_mib;
    data.load_1m = activity.load(plant, 60);
    data.load_5m = activity.load(plant, 300);
    data.load_15m = activity.load(plant, 900);
    put_sensors(data, plant);
    put_fans(data, plant);
    put_supplies(data, plant);
    data.fpga_version = board.fpga_version;
    data.pld_version = board.pld_version;
    return data;
}

Device_facts report_device_facts(const Plant& plant, const FirmwareSlots& firmware, double clock_rate) {
    const auto& board = plant.parameters().plant->board;
    Device_facts facts{};
    std::memcpy(facts.magic, device_facts_magic.data(), sizeof facts.magic);
    put_text(facts.factory.device_type, board.device_type);
    put_text(facts.factory.board_version, board.board_version);
    put_text(facts.factory.serial_number, board.serial_number);
    put_text(facts.factory.mac_address, board.mac_address);
    put_text(facts.factory.device_name, board.device_name);
    std::ranges::copy(firmware.slots, facts.slots);
    facts.running_slot = firmware.running;
    facts.next_boot_slot = firmware.next_boot();
    facts.uptime_s = seconds_of(plant.now() - plant.booted_at());
    timespec machine{};
    ::clock_gettime(CLOCK_BOOTTIME, &machine);
    facts.written_at_ns = std::int64_t{machine.tv_sec} * 1'000'000'000 + machine.tv_nsec;
    facts.clock_rate = clock_rate;
    return facts;
}

bool is_slot_spoilt(const Plant& plant, unsigned slot) {
    return plant.faults().has(FaultKind::slot_corrupt, numbered(slot));
}

} // namespace xpon::simulator
