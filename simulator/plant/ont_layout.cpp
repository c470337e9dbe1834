#include "simulator/plant/ont_layout.hpp"

#include <algorithm>
#include <charconv>

#include <fmt/format.h>

namespace xpon::simulator {

OntPosition position_of(unsigned nth) {
    return {.port = nth % pon_ports + 1, .ont = nth / pon_ports + 1};
}

std::uint64_t serial_of(const OntPosition& position, std::uint32_t vendor) {
    const std::uint64_t number = 0xa0000000U | position.port << 16U | position.ont;
    return std::uint64_t{vendor} << 32U | number;
}

std::string serial_text(std::uint64_t serial) {
    std::string text;
    for (unsigned byte = 0; byte < 4; ++byte) {
        text += static_cast<char>(serial >> (56 - 8 * byte) & 0xffU);
    }
    return text + fmt::format("{:08X}", serial & 0xffffffffU);
}

std::optional<std::uint64_t> parse_serial_number(std::string_view text) {
    constexpr std::size_t letters = 4;
    constexpr std::size_t digits = 8;
    std::uint64_t vendor = 0;
    for (const auto letter : text.substr(0, letters)) {
        vendor = vendor << 8U | static_cast<unsigned char>(letter);
    }
    const auto is_upper = [](char letter) { return letter >= 'A' && letter <= 'Z'; };
    std::uint32_t number = 0;
    const auto* const end = text.data() + text.size();
    const bool is_serial = text.size() == letters + digits && std::ranges::all_of(text.substr(0, letters), is_upper) &&
                           std::from_chars(text.data() + letters, end, number, 16).ptr == end;
    return is_serial ? std::optional(vendor << 32U | number) : std::nullopt;
}

unsigned short record_index_of(const OntPosition& position) {
    return static_cast<unsigned short>((position.port - 1) * max_onts_per_port + position.ont - 1);
}

OntPosition place_of_record(unsigned short index) {
    return {.port = index / max_onts_per_port + 1, .ont = index % max_onts_per_port + 1};
}

unsigned short gem_port_of(unsigned short index, unsigned service) {
    constexpr unsigned first = 512;
    return static_cast<unsigned short>(first + index % max_onts_per_port * max_services + service - 1);
}

std::string description_of(const OntPosition& position) {
    return "ONT " + std::to_string(position.port) + "/" + std::to_string(position.ont);
}

} // namespace xpon::simulator
