#include "tests/unit/platform/serializer/record_generator.hpp"

#include "serializer/ipv4_text.hpp"
#include "xpon/obfuscation/obfuscation.h"

#include <array>
#include <string>

#include <fmt/format.h>

namespace xpon::test {
namespace {

using serializer::Characters;
using serializer::Field;
using serializer::Kind;
using serializer::owned;
using serializer::Tree;

std::int64_t between(std::int64_t min, std::int64_t max, std::mt19937& random) {
    switch (random() % 4) {
    case 0:
        return min;
    case 1:
        return max;
    default:
        return std::uniform_int_distribution(min, max)(random);
    }
}

std::string generate_text(const Field& field, std::mt19937& random) {
    const bool is_empty = field.may_be_empty && random() % 4 == 0;
    const auto length = static_cast<std::size_t>(is_empty ? 0 : between(field.min, field.max, random));
    std::string text;
    while (text.size() < length) {
        switch (field.characters) {
        case Characters::text:
            text += text.size() + 2 <= length && random() % 3 == 0 ? "\u00e9" : "t";
            break;
        case Characters::ascii:
            text += static_cast<char>(0x20 + random() % 0x5F);
            break;
        case Characters::hex:
            text += text.size() + 2 <= length ? "0a" : "";
            break;
        default:
            text += static_cast<char>('a' + random() % 26);
        }
        if (field.characters == Characters::hex && text.size() + 1 == length) {
            break;
        }
    }
    return text;
}

Tree generate_secret(const Field& field, std::mt19937& random) {
    const auto plain = generate_text(field, random);
    std::string form(calculate_valid_size(plain.c_str()), '\0');
    text_obfuscate(plain.c_str(), form.data());
    return owned(cJSON_CreateString(random() % 4 == 0 ? "" : form.c_str()));
}

Tree generate_serial(std::mt19937& random) {
    auto array = owned(cJSON_CreateArray());
    for (int i = 0; i < 10; ++i) {
        serializer::append(*array, owned(cJSON_CreateNumber(i < 8 ? static_cast<int>(random() % 256) : 0)));
    }
    return array;
}

Tree generate_ports(const Field& field, std::mt19937& random) {
    auto array = owned(cJSON_CreateArray());
    for (auto port = field.max; port >= 1; --port) {
        if (random() % 2 == 0) {
            serializer::append(*array, owned(cJSON_CreateNumber(static_cast<double>(port))));
        }
    }
    return array;
}

std::string generate_vlans(std::mt19937& random) {
    const std::array<std::string, 3> lists{"", "1-4094", "4094,7,5-6,1"};
    const auto choice = random() % (lists.size() + 1);
    return choice < lists.size() ? lists[choice] : std::to_string(between(1, 4094, random));
}

Tree generate_value(const Field& field, std::mt19937& random);

Tree generate_elements(const Field& field, std::mt19937& random) {
    auto array = owned(cJSON_CreateArray());
    const auto count = between(0, field.max, random);
    for (std::int64_t i = 0; i < count; ++i) {
        serializer::append(*array, field.child != nullptr ? generate_object(*field.child, random)
                                                          : generate_value(*field.element, random));
    }
    return array;
}

Tree generate_value(const Field& field, std::mt19937& random) {
    switch (field.kind) {
    case Kind::boolean:
        return owned(cJSON_CreateBool(static_cast<int>(random() % 2)));
    case Kind::enumeration:
        return owned(cJSON_CreateString(field.names[random() % field.names.size()]));
    case Kind::text:
        return owned(cJSON_CreateString(generate_text(field, random).c_str()));
    case Kind::secret:
        return generate_secret(field, random);
    case Kind::ipv4: {
        const auto address = static_cast<std::uint32_t>(between(field.min, field.max, random));
        return owned(cJSON_CreateString(serializer::format_ipv4(address).c_str()));
    }
    case Kind::mac:
        return owned(cJSON_CreateString(fmt::format("02:00:5E:00:{:02x}:0A", random() % 256).c_str()));
    case Kind::serial:
        return generate_serial(random);
    case Kind::port_set:
        return generate_ports(field, random);
    case Kind::vlan_set:
        return owned(cJSON_CreateString(generate_vlans(random).c_str()));
    case Kind::object:
        return generate_object(*field.child, random);
    case Kind::array:
    case Kind::list:
        return generate_elements(field, random);
    default:
        return owned(cJSON_CreateNumber(
            static_cast<double>(between(field.min / field.step, field.max / field.step, random) * field.step)));
    }
}

} // namespace

Tree generate_object(const serializer::Table& table, std::mt19937& random) {
    auto object = owned(cJSON_CreateObject());
    for (const auto& field : table.fields) {
        if (field.is_required || random() % 8 != 0) {
            serializer::add_member(*object, field.key, generate_value(field, random));
        }
    }
    return object;
}

} // namespace xpon::test
