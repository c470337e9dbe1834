#include "simulator/files/whole_file.hpp"

#include <cerrno>
#include <fstream>
#include <system_error>

namespace xpon::simulator {

void replace_file(const std::filesystem::path& path, std::string_view contents) {
    replace_file(path, [&](const std::filesystem::path& unfinished) {
        std::ofstream file(unfinished, std::ios::binary | std::ios::trunc);
        file << contents << std::flush;
        if (!file) {
            throw std::system_error(errno, std::generic_category(), unfinished.string());
        }
    });
}

void replace_file(const std::filesystem::path& path,
                  const std::function<void(const std::filesystem::path& unfinished)>& write) {
    const auto unfinished = std::filesystem::path(path).concat(".new");
    write(unfinished);
    std::filesystem::rename(unfinished, path);
}

} // namespace xpon::simulator
