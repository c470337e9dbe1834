#include "schemas/text_patterns.hpp"

#include <ranges>
#include <stdexcept>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace xpon::schemas {
namespace {

using serializer::Characters;

constexpr std::string_view octet = "(?:25[0-5]|2[0-4][0-9]|1[0-9]{2}|[1-9]?[0-9])";
constexpr std::string_view label = "[A-Za-z0-9](?:[A-Za-z0-9-]{0,61}[A-Za-z0-9])?";
constexpr std::string_view vlan = "0*(?:409[0-4]|40[0-8][0-9]|[1-3][0-9]{3}|[1-9][0-9]{0,2})";

std::string quad(std::string_view first) {
    return fmt::format(R"({0}(?:\.{1}){{3}})", first, octet);
}

/// The characters a base64url form of so many bytes has.
constexpr std::size_t base64url_size(std::size_t bytes) {
    return (bytes * 4 + 2) / 3;
}

} // namespace

std::string anchored(std::string_view pattern) {
    return fmt::format(R"({}(?!\n))", pattern);
}

std::string pattern_of(Characters characters) {
    switch (characters) {
    case Characters::text:
        return anchored(R"(^[^\u0000-\u001f\u007f-\u009f]*$)");
    case Characters::ascii:
        return anchored("^[ -~]*$");
    case Characters::name:
        return anchored("^(?:[A-Za-z0-9+][A-Za-z0-9 _.:/@+#-]*)?$");
    case Characters::host:
        // The last label of a name is never a number.
        return anchored(fmt::format(R"(^(?:{}|(?:{}\.)*(?![0-9]+$){})?$)", quad(octet), label, label));
    case Characters::label:
        return anchored("^(?:[A-Za-z0-9](?:[A-Za-z0-9-]*[A-Za-z0-9])?)?$");
    case Characters::hex:
        break;
    }
    return anchored("^(?:[0-9A-Fa-f]{2})*$");
}

std::string ipv4_pattern(std::uint32_t first, std::uint32_t last) {
    if (first == 0 && last == UINT32_MAX) {
        return anchored(fmt::format("^{}$", quad(octet)));
    }
    const auto octet_of = [](std::uint32_t address, unsigned position) {
        return address >> (24U - 8U * position) & 255U;
    };
    if (octet_of(first, 1) != 0 || octet_of(first, 3) != 0 || (last & 0xFFFFFFU) != 0xFFFFFFU) {
        throw std::logic_error(fmt::format("no pattern of addresses from {:#x} to {:#x}", first, last));
    }
    const auto numbers = [](std::uint32_t begin, std::uint32_t end) {
        return fmt::format("(?:{})", fmt::join(std::views::iota(begin, end), "|"));
    };
    const auto networks = numbers(octet_of(first, 0), octet_of(last, 0) + 1);
    const auto too_low = octet_of(first, 2) == 0
                             ? std::string()
                             : fmt::format(R"((?!{}\.0\.{}\.))", octet_of(first, 0), numbers(0, octet_of(first, 2)));
    return anchored(fmt::format("^{}{}$", too_low, quad(networks)));
}

std::string mac_pattern() {
    return anchored("^[0-9A-Fa-f]{2}(?::[0-9A-Fa-f]{2}){5}$");
}

std::string vlan_list_pattern() {
    const auto item = fmt::format("{0}(?:-{0})?", vlan);
    return anchored(fmt::format("^(?:{0}(?:,{0})*)?$", item));
}

std::string secret_pattern(std::size_t least, std::size_t most) {
    constexpr std::size_t checksum = 4;
    return anchored(fmt::format(R"(^(?:\$ob1\$[A-Za-z0-9_-]{{{},{}}})?$)", base64url_size(checksum + least),
                                base64url_size(checksum + most)));
}

} // namespace xpon::schemas
