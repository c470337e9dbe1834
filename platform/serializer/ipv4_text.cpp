#include "serializer/ipv4_text.hpp"

#include <arpa/inet.h>
#include <fmt/format.h>

namespace xpon::serializer {

std::optional<std::uint32_t> parse_ipv4(std::string_view text) {
    in_addr address{};
    if (text.size() >= INET_ADDRSTRLEN || inet_pton(AF_INET, std::string(text).c_str(), &address) != 1) {
        return {};
    }
    return ntohl(address.s_addr);
}

std::string format_ipv4(std::uint32_t address) {
    return fmt::format("{}.{}.{}.{}", address >> 24U, (address >> 16U) & 255U, (address >> 8U) & 255U, address & 255U);
}

} // namespace xpon::serializer
