#pragma once

#include <filesystem>

namespace xpon::simulator {

/// The file from which the board device of this OLT answers, while the object lives.
class BoardFile {
public:
    /// Throws std::system_error when the file cannot be written.
    BoardFile(unsigned pon_ports, unsigned front_ports);
    ~BoardFile();
    BoardFile(const BoardFile&) = delete;
    BoardFile& operator=(const BoardFile&) = delete;

private:
    std::filesystem::path path_;
};

} // namespace xpon::simulator
