#include "simulator/simulation/device_facts_file.hpp"

#include "xpon/peer_side/olt_root.hpp"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace xpon::simulator {

void write_device_facts(const Device_facts& facts) {
    const std::filesystem::path path(below_olt_root(device_facts_path));
    const auto unfinished = std::filesystem::path(path).concat(".new");
    std::ofstream file(unfinished, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(&facts), sizeof facts).flush();
    if (!file) {
        throw std::system_error(errno, std::generic_category(), unfinished.string());
    }
    std::filesystem::rename(unfinished, path);
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
