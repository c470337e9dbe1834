#include "tests/service/fake_device.hpp"

#include <algorithm>

namespace xpon::test {
namespace {

void fill_board(FakeDevice& device) {
    device.environment = {.ram_total = 2048,
                          .ram_free = 512.5,
                          .disk_total = 4096,
                          .disk_free = 1024.25,
                          .load_1m = 0.5,
                          .load_5m = 0.25,
                          .load_15m = 0.1,
                          .fan_count = 2,
                          .fans = {{0, 1, 80}, {1, 0, 0}},
                          .temp_sensor_count = 2,
                          .temp_sensors = {{brd_api__temp_pon_sfp_1, 41}, {brd_api__temp_pon_chip, -5}},
                          .power_sources = {{.is_220v_present = 1,
                                             .is_present = 1,
                                             .is_power_good = 1,
                                             .is_read_info = 1,
                                             .is_required_reset = 0,
                                             .model = "PM-160",
                                             .type = brd__ps_ac,
                                             .serial = "P1",
                                             .version = "1v0",
                                             .revision = "A",
                                             .date = "2024-05-17"},
                                            {}},
                          .fpga_version = 7,
                          .pld_version = 3};
    device.running_slot = 1;
    device.next_boot_slot = 0;
    set_text(device.slots[0].version, "1.4.2.118");
    set_text(device.slots[1].version, "1.4.1.97");
    set_text(device.uptime, "3 days, 04:05:06");
    set_text(device.factory.device_type, "GPON OLT");
    set_text(device.factory.board_version, "2v1");
    set_text(device.factory.serial_number, "OLT0001");
    set_text(device.factory.mac_address, "02:53:49:4D:00:01");
    set_text(device.factory.device_name, "SIM-OLT-16 rev 1");
    device.log_files = {"events.log", "api-service.log"};
}

constexpr Sfp_identification module{sfp_present, "Warning", "Acme", "A-1", "B"};
constexpr Sfp_identification excluded_module{sfp_excluded_from_polling, "", "", "", ""};

void fill_ports(FakeDevice& device) {
    device.link_up.size = 1 + max_uplink_ports;
    for (const std::uint32_t port : {1, 4}) {
        bitfield_set_bit(device.link_up.bits, device.link_up.size, port);
    }
    device.front_ports = {{1, {.speed = "10G", .sfp = module, .media = "10GBASE-LR"}},
                          {2, {.speed = "none", .sfp = {}, .media = ""}},
                          {3, {.speed = "none", .sfp = excluded_module, .media = ""}},
                          {4, {.speed = "1G", .sfp = module, .media = "1000BASE-T"}}};
    device.front_port_eddi = {{1, {.temperature = 38.5, .voltage = 3.29, .bias = 31, .power = 0.61}}};
    device.pon_states = {
        .count = 3, .ports = {{1, pon_channel_active, 2}, {2, pon_channel_no_module, 0}, {3, pon_channel_fault, 0}}};
    device.pon_modules = {
        .count = 3, .ports = {{1, module, 1, 45, 3.3, 12.5, 3.7}, {2, {}, 0, 0, 0, 0, 0}, {3, module, 0, 9, 9, 9, 9}}};
}

void fill_onts(FakeDevice& device) {
    Ont__state_info activated{.serial = {},
                              .port = 1,
                              .ont_id = 1,
                              .state = ont_operational,
                              .equipment_id = "SIM-ONT-4R",
                              .hardware_version = "1v2",
                              .software_version = "2.0.7",
                              .equalization_delay = 143757,
                              .fec_state = 1,
                              .distance = 9731,
                              .rssi = -19.4,
                              .alloc_count = 3,
                              .alloc_ids = {16, 384, 385}};
    std::ranges::copy(serial_of(1), activated.serial);
    device.activated = {activated};
    device.unactivated = {{1, {}, "sesame"}, {3, {}, "x"}};
    std::ranges::copy(serial_of(2), device.unactivated[0].serial);
    std::ranges::copy(serial_of(9), device.unactivated[1].serial);
}

} // namespace

FakeDevice filled_device() {
    FakeDevice device;
    fill_board(device);
    fill_ports(device);
    fill_onts(device);
    return device;
}

} // namespace xpon::test
