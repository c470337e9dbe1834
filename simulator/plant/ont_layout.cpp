#include "simulator/plant/ont_layout.hpp"

namespace xpon::simulator {

OntPosition position_of(unsigned nth) {
    return {.port = nth % pon_ports + 1, .ont = nth / pon_ports + 1};
}

std::uint64_t serial_of(const OntPosition& position, std::uint32_t vendor) {
    const std::uint64_t number = 0xa0000000U | position.port << 16U | position.ont;
    return std::uint64_t{vendor} << 32U | number;
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
