// Headers of firmware images. What is accepted is an image for this OLT and has one form. The checksum and the size of
// the file are put in, since no fuzzer guesses them.

#include "simulator/firmware/image.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <system_error>
#include <vector>

namespace {

using namespace xpon::simulator;

std::optional<ImageHeader> parse(std::span<const std::byte> bytes, std::uint64_t file_size) {
    // On the heap and no longer than it is, so that the sanitizer sees a read behind its end.
    const std::vector<std::byte> exact(bytes.begin(), bytes.end());
    try {
        return parse_image_header(exact, file_size, "file");
    } catch (const std::system_error&) {
        return std::nullopt;
    }
}

} // namespace

// NOLINTNEXTLINE(readability-identifier-naming): the name is libFuzzer's
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto bytes = std::as_bytes(std::span(data, std::min(size, image_header_size)));
    parse(bytes, size);
    if (bytes.size() < image_header_size) {
        return 0;
    }
    ImageHeaderBytes header{};
    std::ranges::copy(bytes, header.begin());
    constexpr std::size_t payload_size_at = 12;
    constexpr std::size_t crc_at = 60;
    std::uint64_t payload_size = 0;
    const auto crc = crc32_of(std::span(header).first<crc_at>());
    for (std::size_t byte = 0; byte < 4; ++byte) {
        header.at(crc_at + byte) = static_cast<std::byte>(crc >> (8 * byte));
        payload_size |= std::uint64_t{std::to_integer<std::uint8_t>(header.at(payload_size_at + byte))} << (8 * byte);
    }
    if (const auto accepted = parse(header, image_header_size + payload_size)) {
        if (encode(*accepted) != header || accepted->payload_size != payload_size ||
            accepted->hardware_id != olt_hardware_id || parse(header, payload_size)) {
            std::abort();
        }
    }
    return 0;
}
