#include "tests/unit/platform/serializer/record_generator.hpp"

#include "serializer/ipv4_text.hpp"
#include "xpon/obfuscation/obfuscation.h"

#include <array>
#include <string>

#include <fmt/format.h>

namespace xpon::test {
namespace {

using serializer::Field;
using serializer::Kind;
using serializer::owned;
using serializer::Tree;

std::int64_t size_within(const Field& field, unsigned variant) {
    if (field.kind == Kind::array || field.kind == Kind::list) {
        return variant % (field.max + 1);
    }
    if (field.may_be_empty && variant % 3 == 0) {
        return 0;
    }
    const std::int64_t sizes[] = {field.min, field.max,
                                  field.min + (field.max - field.min) / 3 / field.step * field.step};
    return sizes[variant % 3];
}

Tree generate_elements(const Field& field, std::int64_t count, unsigned variant) {
    auto array = owned(cJSON_CreateArray());
    for (; count > 0; --count, ++variant) {
        serializer::append(*array, field.child != nullptr
                                       ? generate_object(*field.child, variant)
                                       : generate_value(*field.element, size_within(*field.element, variant), variant));
    }
    return array;
}

} // namespace

Tree generate_value(const Field& field, std::int64_t size, unsigned variant) {
    const auto letters = [&] { return std::string(static_cast<std::size_t>(size), 'a'); };
    std::array<char, 256> form{};
    switch (field.kind) {
    case Kind::boolean:
        return owned(cJSON_CreateBool(static_cast<int>(variant % 2)));
    case Kind::enumeration:
        return owned(cJSON_CreateString(field.names[variant % field.names.size()]));
    case Kind::text:
        return owned(cJSON_CreateString(letters().c_str()));
    case Kind::secret:
        text_obfuscate(letters().c_str(), form.data());
        return owned(cJSON_CreateString(form.data()));
    case Kind::ipv4:
        return owned(cJSON_CreateString(serializer::format_ipv4(static_cast<std::uint32_t>(size)).c_str()));
    case Kind::serial:
        return Tree(cJSON_Parse(fmt::format("[83,73,77,85,255,0,128,{},0,0]", variant % 256).c_str()));
    case Kind::port_set:
        return Tree(cJSON_Parse(variant % 2 == 0 ? "[]" : fmt::format("[{},1]", field.max).c_str()));
    case Kind::vlan_set:
        return owned(cJSON_CreateString(variant % 2 == 0 ? "" : "4094,7,5-6,1"));
    case Kind::array:
    case Kind::list:
        return generate_elements(field, size, variant);
    default:
        return owned(cJSON_CreateNumber(static_cast<double>(size)));
    }
}

Tree generate_object(const serializer::Table& table, unsigned variant) {
    auto object = owned(cJSON_CreateObject());
    for (const auto& field : table.fields) {
        variant = variant * 5 + 3; // neighbours differ
        if (field.is_required || variant % 8 != 0) {
            serializer::add_member(*object, field.key, generate_value(field, size_within(field, variant), variant));
        }
    }
    return object;
}

} // namespace xpon::test
