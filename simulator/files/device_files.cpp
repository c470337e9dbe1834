#include "simulator/files/device_files.hpp"

#include "simulator/files/whole_file.hpp"
#include "xpon/peer_side/olt_root.hpp"

#include <algorithm>
#include <fstream>
#include <string_view>

#include <fmt/format.h>

namespace xpon::simulator {

BoardFile::BoardFile(unsigned pon_ports, unsigned front_ports) : path_(below_olt_root("/run/board")) {
    replace_file(path_, fmt::format("pon_ports {}\nfront_ports {}\n", pon_ports, front_ports));
}

BoardFile::~BoardFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
}

void write_device_facts(const Device_facts& facts) {
    replace_file(below_olt_root(device_facts_path),
                 std::string_view(reinterpret_cast<const char*>(&facts), sizeof facts));
}

std::optional<Device_facts> read_device_facts() {
    Device_facts facts;
    std::ifstream file(below_olt_root(device_facts_path), std::ios::binary);
    file.read(reinterpret_cast<char*>(&facts), sizeof facts);
    const bool is_sound = file && device_facts_magic == std::string_view(facts.magic, sizeof facts.magic) &&
                          std::ranges::find(facts.factory.serial_number, '\0') != std::end(facts.factory.serial_number);
    return is_sound ? std::optional(facts) : std::nullopt;
}

} // namespace xpon::simulator
