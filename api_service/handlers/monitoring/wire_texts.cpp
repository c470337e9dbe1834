#include "api_service/handlers/monitoring/wire_texts.hpp"

#include "api_service/handlers/record_fields.hpp"

#include <iterator>

#include <fmt/compile.h>

namespace xpon::api_service {
namespace {

/// By Switch_port_kind.
constexpr const char* port_kinds[] = {"CPU", "front-port", "pon-port", "port-channel"};

} // namespace

std::string mac_text(std::span<const std::uint8_t, 6> mac) {
    return fmt::format(FMT_COMPILE("{:02X}:{:02X}:{:02X}:{:02X}:{:02X}:{:02X}"), mac[0], mac[1], mac[2], mac[3], mac[4],
                       mac[5]);
}

std::string ipv4_text(std::span<const std::uint8_t, 4> address) {
    return fmt::format(FMT_COMPILE("{}.{}.{}.{}"), address[0], address[1], address[2], address[3]);
}

Result<std::string> switch_port_text(Switch_port_kind kind, std::uint8_t unit, std::uint8_t number) {
    BOOST_OUTCOME_TRY(auto text, text_of_value(port_kinds, kind));
    if (kind != switch_port_cpu) {
        fmt::format_to(std::back_inserter(text), FMT_COMPILE(" {}/{}"), unit, number);
    }
    return text;
}

} // namespace xpon::api_service
