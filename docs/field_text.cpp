#include "docs/field_text.hpp"

#include <array>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace xpon::docs {
namespace {

using serializer::Characters;
using serializer::Field;
using serializer::Kind;

/// Indexed by Characters.
constexpr std::array character_classes{
    "UTF-8 without control characters", "printable ASCII",          "letters, digits, blank and `_ . : / - @ + #`",
    "a host name or IPv4 address",      "one label of a host name", "pairs of hexadecimal digits",
};

std::string numbers(const Field& field) {
    const auto step = field.step == 1 ? std::string() : fmt::format(", multiples of {}", field.step);
    return fmt::format("number {} to {}{}", field.min, field.max, step);
}

std::string ipv4(std::int64_t address) {
    return fmt::format("{}.{}.{}.{}", address >> 24U & 0xFFU, address >> 16U & 0xFFU, address >> 8U & 0xFFU,
                       address & 0xFFU);
}

std::string ports(std::int64_t set) {
    std::string text;
    for (int port = 1; port <= 32; ++port) {
        if ((set >> (port - 1) & 1) != 0) {
            text += fmt::format("{}{}", text.empty() ? "" : ", ", port);
        }
    }
    return fmt::format("[{}]", text);
}

std::string texts(const Field& field) {
    return fmt::format("text of {} to {} bytes: {}{}", field.min, field.max,
                       character_classes.at(static_cast<std::size_t>(field.characters)),
                       field.may_be_empty ? "; or empty" : "");
}

} // namespace

std::string describe_values(const Field& field) {
    switch (field.kind) {
    case Kind::boolean:
        return "true or false";
    case Kind::u8:
    case Kind::u16:
    case Kind::u32:
    case Kind::i8:
    case Kind::i16:
        return numbers(field);
    case Kind::enumeration:
        return fmt::format("`{}`", fmt::join(field.names, "`, `"));
    case Kind::text:
        return texts(field);
    case Kind::secret:
        return "obfuscated text; empty for none";
    case Kind::ipv4:
        return "IPv4 address";
    case Kind::mac:
        return "MAC address";
    case Kind::serial:
        return "array of 10 numbers, the last two 0";
    case Kind::port_set:
        return fmt::format("array of port numbers, 1 to {}", field.max);
    case Kind::vlan_set:
        return "list of VLANs such as `1-4,7`";
    case Kind::object:
        return "object";
    case Kind::array:
        return fmt::format("array of {}", field.max);
    case Kind::list:
        return fmt::format("array of up to {}", field.max);
    }
    return {};
}

std::string describe_default(const Field& field) {
    switch (field.kind) {
    case Kind::boolean:
        return field.default_number != 0 ? "true" : "false";
    case Kind::enumeration:
        return fmt::format("`{}`", field.names[static_cast<std::size_t>(field.default_number)]);
    case Kind::text:
    case Kind::vlan_set:
        return field.is_required ? "required" : fmt::format("\"{}\"", field.default_text);
    case Kind::secret:
        return "\"\"";
    case Kind::ipv4:
        return ipv4(field.default_number);
    case Kind::port_set:
        return ports(field.default_number);
    case Kind::mac:
    case Kind::serial:
        return "all 0";
    case Kind::list:
        return "[]";
    case Kind::object:
    case Kind::array:
        return {};
    default:
        return std::to_string(field.default_number);
    }
}

} // namespace xpon::docs
