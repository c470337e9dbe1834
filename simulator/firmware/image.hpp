#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace xpon::simulator {

// A firmware image is a header and a payload. The header, little-endian:
//
//   offset  size
//        0     8  magic "SIMOLTFW"
//        8     2  format version, 1
//       10     2  size of the header, 64
//       12     4  size of the payload, 1 to 64 MiB
//       16     4  CRC-32 of the payload [IEEE 802.3]
//       20    32  version, printable text padded with NUL
//       52     4  hardware id
//       56     4  build time, seconds since 1970
//       60     4  CRC-32 of bytes 0 to 59

inline constexpr std::size_t image_header_size = 64;
inline constexpr std::size_t longest_version = 31;
inline constexpr std::uint32_t smallest_payload = 1024 * 1024;
inline constexpr std::uint32_t largest_payload = 64 * smallest_payload;
/// Of the OLT that is simulated.
inline constexpr std::uint32_t olt_hardware_id = 0x4F4C5401;

struct ImageHeader {
    std::uint32_t payload_size = 0;
    std::uint32_t payload_crc = 0;
    std::string version;
    std::uint32_t hardware_id = olt_hardware_id;
    std::uint32_t built = 0; ///< seconds since 1970
};

struct FirmwareImage {
    ImageHeader header;
    std::vector<std::byte> payload;
};

using ImageHeaderBytes = std::array<std::byte, image_header_size>;

std::uint32_t crc32_of(std::span<const std::byte> bytes);

ImageHeaderBytes encode(const ImageHeader& header);

/// The header of a file of `file_size` bytes that begins with `begin`, its first 64 bytes or as many as there are.
/// Errors call the file `name`. Throws std::system_error for what is no image for this OLT: EINVAL for none at all,
/// ENODEV for another device's, ENODATA for a file that is too short, EFBIG for one that is too long, EBADMSG for a
/// wrong checksum.
ImageHeader parse_image_header(std::span<const std::byte> begin, std::uint64_t file_size, std::string_view name);

/// The image in a file. Throws as above; EINVAL for what is no file, EBADMSG for a payload that is damaged, and
/// errno of the file system.
FirmwareImage read_image(const std::filesystem::path& path);

} // namespace xpon::simulator
