#include "simulator/firmware/image_maker.hpp"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <random>
#include <system_error>
#include <utility>

namespace xpon::simulator {

FirmwareImage make_image(const std::string& version, std::uint32_t payload_size, std::uint32_t built,
                         std::uint32_t hardware_id) {
    std::vector<std::byte> payload(payload_size);
    // As dense as compressed code, and another for each version.
    std::mt19937_64 content(crc32_of(std::as_bytes(std::span(version))));
    for (std::size_t at = 0; at + sizeof(std::uint64_t) <= payload.size(); at += sizeof(std::uint64_t)) {
        const auto word = content();
        std::memcpy(payload.data() + at, &word, sizeof word);
    }
    return {.header = {.payload_size = payload_size,
                       .payload_crc = crc32_of(payload),
                       .version = version,
                       .hardware_id = hardware_id,
                       .built = built},
            .payload = std::move(payload)};
}

void write_image(const std::filesystem::path& path, const FirmwareImage& image) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    const auto header = encode(image.header);
    file.write(reinterpret_cast<const char*>(header.data()), static_cast<std::streamsize>(header.size()));
    file.write(reinterpret_cast<const char*>(image.payload.data()), static_cast<std::streamsize>(image.payload.size()));
    file.close();
    if (!file) {
        throw std::system_error(errno, std::generic_category(), path.string());
    }
}

} // namespace xpon::simulator
