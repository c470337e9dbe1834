#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace xpon::simulator {

inline constexpr unsigned pon_ports = 16;
inline constexpr unsigned front_ports = 8;
inline constexpr unsigned port_channels = 10;
inline constexpr unsigned max_onts_per_port = 256;
inline constexpr unsigned max_services = 8; ///< of one ONT
inline constexpr unsigned max_onts = pon_ports * max_onts_per_port;

/// Where a physical ONT is: both numbers count from 1.
struct OntPosition {
    unsigned port = 1;
    unsigned ont = 1;

    auto operator<=>(const OntPosition&) const = default;
};

/// The place of the `nth` physical ONT, counted from 0 and below `max_onts`: one after the other goes to the next
/// port, so that any number of them is spread evenly.
OntPosition position_of(unsigned nth);

/// Vendor id (4 letters) and the vendor's number, most significant byte first [G.984.3 9.2]; one of a kind per
/// position.
std::uint64_t serial_of(const OntPosition& position, std::uint32_t vendor = 0x53494d55 /* SIMU */);

/// "SIMUA0030011": the vendor's four letters and eight hexadecimal digits. What is parsed is empty for any other text.
/// @{
std::string serial_text(std::uint64_t serial);
std::optional<std::uint64_t> parse_serial_number(std::string_view text);
/// @}

/// 0-based index of the ONT's record in the configuration database.
unsigned short record_index_of(const OntPosition& position);

/// The place of a record with that index.
OntPosition place_of_record(unsigned short index);

/// The GEM port that a service, from 1, of the ONT configured in that record has.
unsigned short gem_port_of(unsigned short index, unsigned service);

/// "ONT PORT/ONT".
std::string description_of(const OntPosition& position);

} // namespace xpon::simulator
