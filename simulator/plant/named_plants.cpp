#include "simulator/plant/named_plants.hpp"

#include <algorithm>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;

constexpr BoardModel board_16{.device_type = "SIM-OLT-16",
                              .board_version = "1v3",
                              .serial_number = "SIM0A0000042",
                              .mac_address = "02:53:49:00:00:01",
                              .device_name = "SIM-OLT-16 rev 1",
                              .ram_mib = 2048,
                              .disk_mib = 4096,
                              .base_disk_mib = 700,
                              .fpga_version = 18,
                              .pld_version = 5,
                              .supply_type = brd__ps_ac,
                              .supply_model = "SIM-PS-AC150",
                              .supply_serial = "SPA0000123",
                              .supply_version = "1v1",
                              .supply_revision = "A",
                              .supply_date = "2024-05-17",
                              .firmware = {"1.4.2.118", "1.4.1.97"},
                              .firmware_built = {"2024-05-17 08:30:00", "2024-02-02 16:05:12"}};

constexpr BoardModel board_16b{.device_type = "SIM-OLT-16B",
                               .board_version = "2v0",
                               .serial_number = "SIM0B0000007",
                               .mac_address = "02:53:49:00:01:F0",
                               .device_name = "SIM-OLT-16B rev 2",
                               .ram_mib = 4096,
                               .disk_mib = 8192,
                               .base_disk_mib = 1180,
                               .fpga_version = 21,
                               .pld_version = 6,
                               .supply_type = brd__ps_dc,
                               .supply_model = "SIM-PS-DC48",
                               .supply_serial = "SPD0000456",
                               .supply_version = "2v0",
                               .supply_revision = "C",
                               .supply_date = "2023-11-02",
                               .firmware = {"1.5.0.12", "1.4.2.118"},
                               .firmware_built = {"2024-08-30 11:00:47", "2024-05-17 08:30:00"}};

constexpr ModuleModel front_lr{"SIMOPTICS", "SFPP-10LR", "A", "10GBASE-LR", 10000, true};
constexpr ModuleModel front_sx{"SIMOPTICS", "SFP-1SX", "B", "1000BASE-SX", 1000, true};
constexpr ModuleModel front_copper{"TESTWAVE", "CU-1000T", "1.0", "1000BASE-T", 1000, false};
constexpr ModuleModel front_fast{"TESTWAVE", "SFP-100FX", "2", "100BASE-FX", 100, true};
constexpr ModuleModel pon_b_plus{"SIMOPTICS", "GPON-OLT-BP", "A1", "", 2488, true};
constexpr ModuleModel pon_c_plus{"TESTWAVE", "TW-GOLT-CP", "3", "", 2488, true};
constexpr ModuleModel pon_plain{"NOGAUGE", "NG-GOLT", "0", "", 2488, false};

constexpr std::array usual_onts{
    OntModel{"SIM-ONT-1", "1v0", "1.3.9", 1, 0, false},
    OntModel{"SIM-ONT-4V", "1v1", "2.0.5", 4, 2, false},
    OntModel{"SIM-ONT-4R", "1v2", "2.0.7", 4, 2, true},
};
constexpr std::array mixed_onts{
    OntModel{"SIM-ONT-4R", "1v2", "2.0.7", 4, 2, true},
    OntModel{"SIM-ONT-4R", "1v3", "2.1.0-beta", 4, 2, true},
    OntModel{"TW HOME 1", "B", "3.17.10", 1, 0, false},
    OntModel{"NG-BRIDGE", "", "0.9", 1, 0, false},
    OntModel{"TW-OFFICE-4-2-ROUTE", "REV. C-2023", "5.20.0-r100", 4, 2, true},
};

constexpr std::uint32_t vendor_simu = 0x53494d55; // "SIMU"
constexpr std::array<std::uint32_t, 1> usual_vendors{vendor_simu};
constexpr std::array<std::uint32_t, 3> mixed_vendors{vendor_simu, 0x54574156, 0x4e4f4741}; // "TWAV", "NOGA"

constexpr std::array faulty_from_start{
    InitialFault{FaultKind::ont_los, "1/3"},
    InitialFault{FaultKind::ont_los, "7"},
    InitialFault{FaultKind::ont_rogue, "2/5"},
    InitialFault{FaultKind::ont_omci, "2/6"},
    InitialFault{FaultKind::ont_omci, "3/9"},
    InitialFault{FaultKind::ont_moved, "4/4", 5},
    InitialFault{FaultKind::ont_attenuation, "1/8", 8.25},
    InitialFault{FaultKind::ont_attenuation, "1/10", 6},
    InitialFault{FaultKind::module_absent, "pon/6"},
    InitialFault{FaultKind::module_excluded, "pon/8"},
    InitialFault{FaultKind::module_no_diagnostics, "pon/9"},
    InitialFault{FaultKind::module_hot, "pon/10", 50},
    InitialFault{FaultKind::module_hot, "pon/11", 40},
    InitialFault{FaultKind::module_excluded, "front/4"},
    InitialFault{FaultKind::module_hot, "front/2", 55},
    InitialFault{FaultKind::fan_failed, "2"},
    InitialFault{FaultKind::fan_absent, "4"},
    InitialFault{FaultKind::psu2_present, ""},
    InitialFault{FaultKind::psu_failed, "1"},
    InitialFault{FaultKind::temperature, "4", -7},
    InitialFault{FaultKind::slot_corrupt, "1"},
    InitialFault{FaultKind::pppoe_blocked, "1/5/1"},
};

// clang-format off
constexpr std::array<const ModuleModel*, front_ports> usual_front{
    &front_lr, &front_lr, &front_sx, &front_copper, nullptr, nullptr, &front_sx, nullptr};
constexpr std::array<const ModuleModel*, front_ports> one_front{&front_copper};
constexpr std::array<const ModuleModel*, front_ports> full_front{
    &front_lr, &front_lr, &front_lr, &front_lr, &front_lr, &front_lr, &front_lr, &front_lr};
constexpr std::array<const ModuleModel*, front_ports> mixed_front{
    &front_lr, &front_sx, &front_copper, &front_fast, &front_copper, &front_sx, nullptr, &front_lr};
constexpr std::array<const ModuleModel*, pon_ports> mixed_pon{
    &pon_b_plus, &pon_c_plus, &pon_plain,  &pon_b_plus, &pon_c_plus, &pon_plain,  &pon_b_plus, &pon_c_plus,
    &pon_plain,  &pon_b_plus, &pon_c_plus, &pon_plain,  &pon_b_plus, &pon_c_plus, &pon_plain,  &pon_b_plus};
// clang-format on

constexpr auto all_pon = [] {
    std::array<const ModuleModel*, pon_ports> modules{};
    modules.fill(&pon_b_plus);
    return modules;
}();

// A usual plant fills an eighth of the OLT, nine of ten of its ONTs are in service.
constexpr PlantSize usual{.onts = 32 * pon_ports, .configured = 32 * pon_ports * 9 / 10};

// clang-format off
constexpr std::array plants{
    NamedPlant{"empty", {.onts = 0, .configured = 0}, 95s, 0, 32, &board_16, one_front, 0, {}, usual_onts, usual_vendors, {}},
    NamedPlant{default_plant, usual, 73h + 12min, 0.05, 32, &board_16, usual_front, 0b0000'1111, all_pon, usual_onts, usual_vendors, {}},
    NamedPlant{"full", {.onts = max_onts, .configured = max_onts}, 24h * 41 + 7h, 0.05, 64, &board_16, full_front, 0xff, all_pon, usual_onts, usual_vendors, {}},
    NamedPlant{"faulty", usual, 26h, 0.05, 32, &board_16, usual_front, 0b0000'0111, all_pon, usual_onts, usual_vendors, faulty_from_start},
    NamedPlant{"mixed-vendors", usual, 24h * 9 + 41min, 0.05, 32, &board_16b, mixed_front, 0b1011'1110, mixed_pon, mixed_onts, mixed_vendors, {}},
};
// clang-format on

} // namespace

std::span<const NamedPlant> named_plants() {
    return plants;
}

const NamedPlant* find_plant(std::string_view name) {
    const auto* found = std::ranges::find(plants, name, &NamedPlant::name);
    return found == plants.end() ? nullptr : found;
}

} // namespace xpon::simulator
