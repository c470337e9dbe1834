#include "simulator/plants/equipment_reader.hpp"

#include "simulator/plant/ont_layout.hpp"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

constexpr std::size_t vendor_letters = 4;

bool is_upper(char letter) {
    return letter >= 'A' && letter <= 'Z';
}

std::uint32_t vendor_of(std::string_view letters) {
    std::uint32_t vendor = 0;
    for (const auto letter : letters) {
        vendor = vendor << 8U | static_cast<unsigned char>(letter);
    }
    return vendor;
}

std::string mac_address_of(const DescribedValue& value) {
    const auto text = value.text();
    constexpr std::string_view form = "02:53:49:00:00:01";
    const bool is_mac =
        text.size() == form.size() && std::ranges::equal(text, form, [](char letter, char like) {
            return like == ':' ? letter == ':' : (letter >= '0' && letter <= '9') || (letter >= 'A' && letter <= 'F');
        });
    if (!is_mac) {
        value.fail(fmt::format("must be a MAC address such as {}", form));
    }
    return text;
}

void read_supply(const DescribedValue& supply, BoardModel& board) {
    supply.check_members({"type", "model", "serial_number", "version", "revision", "date"});
    const auto type = supply.at("type");
    if (type.text() != "ac" && type.text() != "dc") {
        type.fail("must be ac or dc");
    }
    board.supply_type = type.text() == "ac" ? brd__ps_ac : brd__ps_dc;
    board.supply_model = supply.at("model").text();
    board.supply_serial = supply.at("serial_number").text();
    if (board.supply_serial.empty()) {
        supply.at("serial_number").fail("must not be empty");
    }
    board.supply_version = supply.at("version").text();
    board.supply_revision = supply.at("revision").text();
    board.supply_date = supply.at("date").text();
}

void read_firmware(const DescribedValue& slots, BoardModel& board) {
    const auto rows = slots.elements();
    if (rows.size() != std::size(board.firmware)) {
        slots.fail(fmt::format("must be a list of {} slots", std::size(board.firmware)));
    }
    constexpr std::size_t longest_version = 31;
    for (std::size_t slot = 0; slot < rows.size(); ++slot) {
        rows[slot].check_members({"version", "built"});
        board.firmware[slot] = rows[slot].at("version").text(longest_version);
        board.firmware_built[slot] = rows[slot].at("built").text();
    }
}

OdnClass odn_class_of(const DescribedValue& value) {
    static constexpr std::array names{"a", "b", "b_plus", "c", "c_plus"}; // by OdnClass
    const auto name = value.text();
    const auto* const found = std::ranges::find(names, name);
    if (found == names.end()) {
        value.fail("must be a, b, b_plus, c or c_plus");
    }
    return static_cast<OdnClass>(found - names.begin());
}

ModuleModel module_of(const DescribedValue& module) {
    module.check_members({"vendor", "part_number", "revision", "media", "speed_mbps", "diagnostics", "odn_class"});
    constexpr unsigned fastest_mbps = 10000;
    ModuleModel model{.vendor = module.at("vendor").text(),
                      .part_number = module.at("part_number").text(),
                      .revision = module.at("revision").text(),
                      .media = "",
                      .speed_mbps = module.at("speed_mbps").whole(1, fastest_mbps)};
    if (const auto media = module.find("media")) {
        model.media = media->text();
    }
    if (const auto diagnostics = module.find("diagnostics")) {
        model.has_diagnostics = diagnostics->flag();
    }
    if (const auto odn_class = module.find("odn_class")) {
        model.odn_class = odn_class_of(*odn_class);
    }
    return model;
}

OntModel ont_model_of(const DescribedValue& model) {
    model.check_members({"equipment_id", "vendor", "hardware_version", "software_version", "ethernet_ports",
                         "telephone_ports", "router"});
    const auto vendor = model.at("vendor");
    const auto letters = vendor.text();
    if (letters.size() != vendor_letters || !std::ranges::all_of(letters, is_upper)) {
        vendor.fail("must be four capital letters");
    }
    constexpr unsigned most_ethernet = 4;
    constexpr unsigned most_telephone = 2;
    const auto router = model.find("router");
    return {.equipment_id = model.at("equipment_id").text(20), // ONT2-G [G.988 9.1.2]
            .hardware_version = model.at("hardware_version").text(14),
            .software_version = model.at("software_version").text(14),
            .vendor = vendor_of(letters),
            .ethernet_ports = model.at("ethernet_ports").whole(1, most_ethernet),
            .telephone_ports = model.at("telephone_ports").whole(0, most_telephone),
            .has_router = router && router->flag()};
}

} // namespace

BoardModel board_of(const DescribedValue& board) {
    board.check_members({"device_type", "board_version", "serial_number", "mac_address", "device_name", "ram_mib",
                         "disk_mib", "used_disk_mib", "fpga_version", "pld_version", "power_supply", "firmware"});
    constexpr double most_mib = 1 << 20;
    BoardModel model;
    model.device_type = board.at("device_type").text();
    model.board_version = board.at("board_version").text();
    model.serial_number = board.at("serial_number").text();
    model.mac_address = mac_address_of(board.at("mac_address"));
    model.device_name = board.at("device_name").text();
    constexpr double least_ram_mib = 2048; // what the daemons of a full OLT take
    model.ram_mib = static_cast<float>(board.at("ram_mib").number(least_ram_mib, most_mib));
    model.disk_mib = static_cast<float>(board.at("disk_mib").number(1, most_mib));
    model.base_disk_mib = static_cast<float>(board.at("used_disk_mib").number(0, model.disk_mib));
    model.fpga_version = static_cast<std::uint8_t>(board.at("fpga_version").whole(0, 255));
    model.pld_version = static_cast<std::uint8_t>(board.at("pld_version").whole(0, 255));
    read_supply(board.at("power_supply"), model);
    read_firmware(board.at("firmware"), model);
    return model;
}

Modules modules_of(const DescribedValue& modules) {
    Modules models;
    for (const auto& module : modules.elements()) {
        if (!models.emplace(module.name(), module_of(module)).second) {
            module.fail("stands here twice");
        }
    }
    return models;
}

std::vector<OntModel> ont_models_of(const DescribedValue& models) {
    std::vector<OntModel> read;
    std::ranges::transform(models.elements(), std::back_inserter(read), ont_model_of);
    if (read.empty()) {
        models.fail("must have at least one model");
    }
    return read;
}

std::uint64_t serial_number_of(const DescribedValue& value) {
    const auto serial = parse_serial_number(value.text());
    if (!serial) {
        value.fail("must be four capital letters and eight hexadecimal digits");
    }
    return *serial;
}

} // namespace xpon::simulator
