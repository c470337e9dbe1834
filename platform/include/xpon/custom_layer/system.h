#pragma once

#include <cstdint>

struct Ipc;

/// Where a temperature is measured.
enum Brd_api__temp_id : std::uint32_t {
    brd_api__temp_pon_sfp_1 = 0,
    brd_api__temp_pon_sfp_2 = 1,
    brd_api__temp_front_sfp = 2,
    brd_api__temp_switch_chip = 3,
    brd_api__temp_pon_chip = 4,
};

enum Brd__ps_type : std::uint32_t { brd__ps_unknown = 0, brd__ps_dc = 1, brd__ps_ac = 2 };

/// A power supply. The flags are 0 or 1. Everything from `is_required_reset` on has a meaning only when the
/// identification was read.
struct Brd__ps_info {
    std::uint8_t is_220v_present;
    std::uint8_t is_present;
    std::uint8_t is_power_good;
    std::uint8_t is_read_info;
    std::uint8_t is_required_reset;
    char model[32];
    Brd__ps_type type;
    char serial[32];
    char version[16];
    char revision[16];
    char date[16]; ///< "2024-05-17"
};

struct Fan_state {
    std::uint8_t is_fault;   ///< 0 or 1
    std::uint8_t is_present; ///< 0 or 1
    std::uint16_t rate;      ///< revolutions per second
};

struct Temp_sensor_state {
    Brd_api__temp_id id;
    std::int8_t value; ///< degrees Celsius
};

struct System_environment_data {
    float ram_total; ///< MiB, as the next three
    float ram_free;
    float disk_total;
    float disk_free;
    double load_1m; ///< load averages over 1, 5 and 15 minutes
    double load_5m;
    double load_15m;
    std::uint8_t fan_count; ///< valid elements of `fans`, at most 8
    Fan_state fans[8];
    std::uint8_t temp_sensor_count; ///< valid elements of `temp_sensors`, at most 8
    Temp_sensor_state temp_sensors[8];
    Brd__ps_info power_sources[2]; ///< both always valid; an absent one has all flags 0
    std::uint8_t fpga_version;
    std::uint8_t pld_version;
};

extern "C" {

/// The state of the board, asked from the system manager.
int custom_layer__get_system_environment_info(Ipc* ipc, System_environment_data* out);

} // extern "C"
