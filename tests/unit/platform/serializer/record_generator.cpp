#include "tests/unit/platform/serializer/record_generator.hpp"

#include "serializer/ipv4_text.hpp"
#include "xpon/obfuscation/obfuscation.h"

#include <string>

namespace xpon::test {
namespace {

using serializer::Field;
using serializer::Kind;
using serializer::owned;
using serializer::Tree;

/// Often one of the limits.
std::int64_t size_within(const Field& field, std::mt19937& random) {
    const auto choice = random() % 4;
    if (field.kind == Kind::array || field.kind == Kind::list) {
        return std::uniform_int_distribution<std::int64_t>(0, field.max)(random);
    }
    if (field.may_be_empty && choice == 2) {
        return 0;
    }
    auto size = std::uniform_int_distribution(field.min / field.step, field.max / field.step)(random) * field.step;
    size = choice == 0 ? field.min : choice == 1 ? field.max : size;
    return field.characters == serializer::Characters::hex ? size / 2 * 2 : size;
}

Tree generate_secret(const std::string& plain) {
    std::string form(calculate_valid_size(plain.c_str()), '\0');
    text_obfuscate(plain.c_str(), form.data());
    return owned(cJSON_CreateString(form.c_str()));
}

/// An array of numbers counted down from `count`, about every second of them.
Tree generate_ports(std::int64_t count, std::mt19937& random) {
    auto array = owned(cJSON_CreateArray());
    for (auto port = count; port >= 1; --port) {
        if (random() % 2 == 0) {
            serializer::append(*array, owned(cJSON_CreateNumber(static_cast<double>(port))));
        }
    }
    return array;
}

Tree generate_elements(const Field& field, std::int64_t count, std::mt19937& random) {
    auto array = owned(cJSON_CreateArray());
    for (std::int64_t i = 0; i < count; ++i) {
        serializer::append(*array, field.child != nullptr
                                       ? generate_object(*field.child, random)
                                       : generate_value(*field.element, size_within(*field.element, random), random));
    }
    return array;
}

} // namespace

Tree generate_value(const Field& field, std::int64_t size, std::mt19937& random) {
    const auto letters = [&] { return std::string(static_cast<std::size_t>(size), 'a'); };
    switch (field.kind) {
    case Kind::boolean:
        return owned(cJSON_CreateBool(static_cast<int>(random() % 2)));
    case Kind::enumeration:
        return owned(cJSON_CreateString(field.names[random() % field.names.size()]));
    case Kind::text:
        return owned(cJSON_CreateString(letters().c_str()));
    case Kind::secret:
        return generate_secret(letters());
    case Kind::ipv4:
        return owned(cJSON_CreateString(serializer::format_ipv4(static_cast<std::uint32_t>(size)).c_str()));
    case Kind::mac:
        return owned(cJSON_CreateString("02:00:5E:00:7F:0A"));
    case Kind::serial:
        return Tree(cJSON_Parse("[83,73,77,85,255,0,128,1,0,0]"));
    case Kind::port_set:
        return generate_ports(field.max, random);
    case Kind::vlan_set:
        return owned(cJSON_CreateString(random() % 2 == 0 ? "" : "4094,7,5-6,1"));
    case Kind::object:
        return generate_object(*field.child, random);
    case Kind::array:
    case Kind::list:
        return generate_elements(field, size, random);
    default:
        return owned(cJSON_CreateNumber(static_cast<double>(size)));
    }
}

Tree generate_object(const serializer::Table& table, std::mt19937& random) {
    auto object = owned(cJSON_CreateObject());
    for (const auto& field : table.fields) {
        if (field.is_required || random() % 8 != 0) {
            serializer::add_member(*object, field.key, generate_value(field, size_within(field, random), random));
        }
    }
    return object;
}

} // namespace xpon::test
