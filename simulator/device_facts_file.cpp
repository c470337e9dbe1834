#include "simulator/device_facts_file.hpp"

#include "xpon/olt_root/olt_root.hpp"

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

} // namespace xpon::simulator
