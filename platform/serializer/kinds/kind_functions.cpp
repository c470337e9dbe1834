#include "serializer/kinds/kind_functions.hpp"

#include "serializer/record_memory.hpp"

namespace xpon::serializer {

const KindFunctions& functions_of(Kind kind) {
    switch (kind) {
    case Kind::boolean:
        return boolean_functions;
    case Kind::u8:
    case Kind::u16:
    case Kind::u32:
    case Kind::i8:
    case Kind::i16:
        return number_functions;
    case Kind::enumeration:
        return enumeration_functions;
    case Kind::text:
        return text_functions;
    case Kind::secret:
        return secret_functions;
    case Kind::ipv4:
        return ipv4_functions;
    case Kind::mac:
        return mac_functions;
    case Kind::serial:
        return serial_functions;
    case Kind::port_set:
        return port_set_functions;
    case Kind::vlan_set:
        return vlan_set_functions;
    case Kind::object:
        return object_functions;
    case Kind::array:
        return array_functions;
    case Kind::list:
        break;
    }
    return list_functions;
}

void set_default_number(const Field& field, std::byte* record) {
    store_number(field, record, field.default_number);
}

bool copy_bytes(const Field& field, const std::byte* from, std::byte* to) {
    std::memcpy(to + field.offset, from + field.offset, field.size);
    return true;
}

void wrong_type(FieldErrors& errors, const Path& path, std::string_view expected) {
    errors.add(Json_errors::wrong_type, path, {expected});
}

std::optional<std::string_view> expect_string(const cJSON& value, FieldErrors& errors, const Path& path) {
    if (cJSON_IsString(&value) == 0) {
        wrong_type(errors, path, "string");
        return {};
    }
    return value.valuestring;
}

bool expect_array(const cJSON& value, FieldErrors& errors, const Path& path) {
    if (cJSON_IsArray(&value) == 0) {
        wrong_type(errors, path, "array");
        return false;
    }
    return true;
}

} // namespace xpon::serializer
