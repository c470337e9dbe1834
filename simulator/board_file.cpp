#include "simulator/board_file.hpp"

#include "xpon/peer_side/olt_root.hpp"

#include <cerrno>
#include <fstream>
#include <system_error>

namespace xpon::simulator {

BoardFile::BoardFile(unsigned pon_ports, unsigned front_ports) : path_(below_olt_root("/run/board")) {
    const auto unfinished = std::filesystem::path(path_).concat(".new");
    std::ofstream file(unfinished, std::ios::trunc);
    file << "pon_ports " << pon_ports << "\nfront_ports " << front_ports << "\n" << std::flush;
    if (!file) {
        throw std::system_error(errno, std::generic_category(), unfinished.string());
    }
    std::filesystem::rename(unfinished, path_);
}

BoardFile::~BoardFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
}

} // namespace xpon::simulator
