#pragma once

#include "simulator/firmware/image.hpp"

#include <cstdint>
#include <filesystem>
#include <string>

namespace xpon::simulator {

/// An image of any such version: what runs on a simulated OLT is its version text. `payload_size` as the format wants
/// it; the payload follows from the version.
FirmwareImage make_image(const std::string& version, std::uint32_t payload_size, std::uint32_t built,
                         std::uint32_t hardware_id = olt_hardware_id);

/// Throws std::system_error when the file cannot be written.
void write_image(const std::filesystem::path& path, const FirmwareImage& image);

} // namespace xpon::simulator
