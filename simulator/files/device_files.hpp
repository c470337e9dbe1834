#pragma once

#include "xpon/peer_side/device_facts.h"

#include <filesystem>
#include <optional>

namespace xpon::simulator {

// The files from which the device's own libraries read what it is. All calls that write throw std::system_error.

/// The file from which the board device of this OLT answers, while the object lives.
class BoardFile {
public:
    BoardFile(unsigned pon_ports, unsigned front_ports);
    ~BoardFile();
    BoardFile(const BoardFile&) = delete;
    BoardFile& operator=(const BoardFile&) = delete;

private:
    std::filesystem::path path_;
};

/// Replaces the file from which the device's own facts are read. It stays when the simulator ends: a device knows who
/// it is without its daemons.
void write_device_facts(const Device_facts& facts);

/// What was written last since the run folder was emptied, which is what a start of the machine does to it.
std::optional<Device_facts> read_device_facts();

} // namespace xpon::simulator
