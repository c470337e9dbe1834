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
    for (const std::uint32_t port : {1U, 4U}) {
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

/// Bytes of value 1 make a record with one instance and every group, whatever its kind.
void fill_counters(FakeDevice& device) {
    for (std::uint8_t kind = ont_information_gem_port_pm; kind <= ont_information_olt_pon; ++kind) {
        device.counters[Ont_information_kind{kind}].assign(sizeof(Ont_eth_frame_ext_pm), std::byte{1});
    }
    device.counters[ont_information_olt_gem_port][1] = {}; // its count has two bytes
}

void fill_subscribers(FakeDevice& device) {
    device.leases = {{.pon_port = 3,
                      .ont_id = 17,
                      .mac = {0x02, 0x53, 0x49, 0x03, 0x10, 0x0A},
                      .service_id = 2,
                      .gem_port = 640,
                      .outer_vid = 100,
                      .ip = {10, 0, 0, 1},
                      .life_time_msec = 4294967295,
                      .ont_serial = {'S', 'I', 'M', 'U', 0, 0, 0, 9, 0, 0}}};
    device.pppoe_sessions = {{.pon_port = 16,
                              .ont_id = 256,
                              .gem_port = 4093,
                              .session_id = 65535,
                              .ont_serial = {'S', 'I', 'M', 'U', 0, 0, 0, 8, 0, 0},
                              .duration_sec = 86400,
                              .unblock_rest_sec = 30,
                              .client_mac = {0xFF, 0x00, 0xAB, 0x01, 0x0F, 0xF0}}};
    const Igmp_group group{.address = {239, 0, 0, 7},
                           .is_in_deletion_queue = 0,
                           .filter_mode = igmp_exclude,
                           .vlan = 201,
                           .source_count = 1,
                           .sources = {{{192, 168, 255, 1}, igmp_include}},
                           .port_count = 2,
                           .ports = {{switch_port_pon, 1, 3, 0, 214}, {switch_port_cpu, 1, 0, 255, 0}}};
    device.vlans[201] = {.is_snooping = 1, .groups = {group}};
    device.mac_table = {{.mac = {0x02, 0x53, 0x49, 0x03, 0x10, 0x10},
                         .kind = switch_port_pon,
                         .unit = 1,
                         .number = 3,
                         .svid = 100,
                         .cvid = 7,
                         .uvid = 4094,
                         .ont_id = 17,
                         .gem = 640,
                         .type = mac_entry_dynamic}};
    set_text(device.snmp.engine_id, "80007ed90302534a4d0001");
}

} // namespace

FakeDevice filled_device() {
    FakeDevice device;
    fill_board(device);
    fill_ports(device);
    fill_onts(device);
    fill_counters(device);
    fill_subscribers(device);
    return device;
}

} // namespace xpon::test
