#include "simulator/firmware/image.hpp"

#include "xpon/core/unique_fd.hpp"

#include <algorithm>
#include <cerrno>
#include <concepts>
#include <string_view>
#include <system_error>

#include <sys/stat.h>

#include <boost/crc.hpp>
#include <fcntl.h>
#include <fmt/format.h>

namespace xpon::simulator {
namespace {

constexpr std::string_view magic = "SIMOLTFW";
constexpr std::uint16_t format_version = 1;

// Places in the header.
constexpr std::size_t format_at = 8;
constexpr std::size_t header_size_at = 10;
constexpr std::size_t payload_size_at = 12;
constexpr std::size_t payload_crc_at = 16;
constexpr std::size_t version_at = 20;
constexpr std::size_t version_size = longest_version + 1;
constexpr std::size_t hardware_at = 52;
constexpr std::size_t built_at = 56;
constexpr std::size_t header_crc_at = 60;

template <std::unsigned_integral Number>
Number read_number(std::span<const std::byte> bytes, std::size_t at) {
    Number number = 0;
    for (std::size_t byte = sizeof number; byte-- > 0;) {
        number = static_cast<Number>(number << 8U | static_cast<std::uint8_t>(bytes[at + byte]));
    }
    return number;
}

template <std::unsigned_integral Number>
void write_number(ImageHeaderBytes& bytes, std::size_t at, Number number) {
    for (std::size_t byte = 0; byte < sizeof number; ++byte) {
        bytes.at(at + byte) = static_cast<std::byte>(number >> (8 * byte));
    }
}

[[noreturn]] void refuse(int cause, std::string_view name, std::string_view text) {
    throw std::system_error(cause, std::generic_category(), fmt::format("{}: {}", name, text));
}

std::string_view text_of(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string parse_version(std::span<const std::byte> field, std::string_view name) {
    const auto text = text_of(field);
    const auto end = std::min(text.find('\0'), text.size());
    const bool is_printable =
        std::ranges::all_of(text.substr(0, end), [](char letter) { return letter > ' ' && letter <= '~'; });
    const bool is_padded = text.find_first_not_of('\0', end) == std::string_view::npos;
    if (end == 0 || end == text.size() || !is_printable || !is_padded) {
        refuse(EINVAL, name, fmt::format("its version is no text of 1 to {} letters padded with NUL", longest_version));
    }
    return std::string(text.substr(0, end));
}

core::UniqueFd open_file(const std::filesystem::path& path, std::uint64_t& size) {
    // Without O_NONBLOCK a pipe would be waited for.
    core::UniqueFd file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status{};
    if (!file || ::fstat(file.get(), &status) != 0) {
        refuse(errno, path.native(), "it cannot be opened");
    }
    if (!S_ISREG(status.st_mode)) {
        refuse(EINVAL, path.native(), "it is no file");
    }
    size = static_cast<std::uint64_t>(status.st_size);
    return file;
}

/// Fills `bytes`, or refuses a file that ends before.
void read_all(const core::UniqueFd& file, std::span<std::byte> bytes, std::string_view name) {
    while (!bytes.empty()) {
        const auto count = ::read(file.get(), bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            refuse(count < 0 ? errno : ENODATA, name, "it cannot be read to its end");
        }
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
}

} // namespace

std::uint32_t crc32_of(std::span<const std::byte> bytes) {
    boost::crc_32_type crc;
    crc.process_bytes(bytes.data(), bytes.size());
    return crc.checksum();
}

ImageHeaderBytes encode(const ImageHeader& header) {
    ImageHeaderBytes bytes{};
    std::ranges::copy(std::as_bytes(std::span(magic)), bytes.begin());
    write_number(bytes, format_at, format_version);
    write_number(bytes, header_size_at, static_cast<std::uint16_t>(image_header_size));
    write_number(bytes, payload_size_at, header.payload_size);
    write_number(bytes, payload_crc_at, header.payload_crc);
    const auto version = std::as_bytes(std::span(header.version));
    std::ranges::copy(version.first(std::min(version.size(), longest_version)), bytes.begin() + version_at);
    write_number(bytes, hardware_at, header.hardware_id);
    write_number(bytes, built_at, header.built);
    write_number(bytes, header_crc_at, crc32_of(std::span(bytes).first<header_crc_at>()));
    return bytes;
}

ImageHeader parse_image_header(std::span<const std::byte> begin, std::uint64_t file_size, std::string_view name) {
    if (!text_of(begin).starts_with(magic)) {
        refuse(EINVAL, name, fmt::format("it does not begin with {}", magic));
    }
    if (begin.size() < image_header_size) {
        refuse(ENODATA, name, "it is shorter than a header");
    }
    const auto format = read_number<std::uint16_t>(begin, format_at);
    const auto header_size = read_number<std::uint16_t>(begin, header_size_at);
    if (format != format_version || header_size != image_header_size) {
        refuse(EINVAL, name,
               fmt::format("it is of format {} with a header of {} bytes, known is format {} with {}", format,
                           header_size, format_version, image_header_size));
    }
    ImageHeader header{.payload_size = read_number<std::uint32_t>(begin, payload_size_at),
                       .payload_crc = read_number<std::uint32_t>(begin, payload_crc_at),
                       .version = parse_version(begin.subspan(version_at, version_size), name),
                       .hardware_id = read_number<std::uint32_t>(begin, hardware_at),
                       .built = read_number<std::uint32_t>(begin, built_at)};
    if (header.payload_size < smallest_payload || header.payload_size > largest_payload) {
        refuse(EINVAL, name,
               fmt::format("it has a payload of {} bytes; possible are {} to {}", header.payload_size, smallest_payload,
                           largest_payload));
    }
    if (header.hardware_id != olt_hardware_id) {
        refuse(ENODEV, name,
               fmt::format("it is made for hardware {:#010x}, this is {:#010x}", header.hardware_id, olt_hardware_id));
    }
    const auto expected_size = image_header_size + std::uint64_t{header.payload_size};
    if (file_size != expected_size) {
        refuse(file_size < expected_size ? ENODATA : EFBIG, name,
               fmt::format("it has {} bytes, its header asks for {}", file_size, expected_size));
    }
    if (read_number<std::uint32_t>(begin, header_crc_at) != crc32_of(begin.first(header_crc_at))) {
        refuse(EBADMSG, name, "the checksum of its header is wrong");
    }
    return header;
}

FirmwareImage read_image(const std::filesystem::path& path) {
    std::uint64_t size = 0;
    const auto file = open_file(path, size);
    ImageHeaderBytes begin{};
    const auto there = std::span(begin).first(std::min<std::uint64_t>(size, begin.size()));
    read_all(file, there, path.native());
    FirmwareImage image{.header = parse_image_header(there, size, path.native()), .payload = {}};
    image.payload.resize(image.header.payload_size);
    read_all(file, image.payload, path.native());
    if (crc32_of(image.payload) != image.header.payload_crc) {
        refuse(EBADMSG, path.native(), "the checksum of its payload is wrong");
    }
    return image;
}

} // namespace xpon::simulator
