#include "api_service/handlers/monitoring/ont_serial.hpp"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <string_view>

#include <fmt/format.h>

namespace xpon::api_service {
namespace {

Result<std::uint8_t> read_byte(const cJSON* item, std::size_t position) {
    if (cJSON_IsNumber(item) == 0) {
        return ErrorPayload(Error::InvalidInputArg, fmt::format("item {} in json array is not number", position));
    }
    constexpr auto greatest = std::numeric_limits<std::uint8_t>::max();
    const double value = item->valuedouble;
    if (!(value >= 0 && value <= greatest) || std::trunc(value) != value) {
        return ErrorPayload(
            Error::InvalidInputArg,
            fmt::format("item {} in json array is {}, value must be in range from 0 to {}", position, value, greatest));
    }
    return static_cast<std::uint8_t>(value);
}

} // namespace

std::size_t OntSerialHash::operator()(const OntSerial& serial) const {
    return std::hash<std::string_view>()(
        std::string_view(reinterpret_cast<const char*>(serial.data()), serial.size())); // NOLINT: bytes as characters
}

OntSerial make_serial(std::span<const std::uint8_t, ont_serial_bin_size> bytes) {
    OntSerial serial{};
    std::ranges::copy(bytes, serial.begin());
    return serial;
}

OntSerial make_serial(std::uint64_t configured) {
    OntSerial serial{};
    unsigned_long_serial_to_bin(configured, serial.data());
    return serial;
}

Result<OntSerial> get_serial_from_array(const cJSON* array) {
    const auto size = static_cast<std::size_t>(cJSON_GetArraySize(array));
    OntSerial serial{};
    if (size != serial.size()) {
        return ErrorPayload(
            Error::InvalidInputArg,
            fmt::format("Binary serial number must contain {} bytes, it contains {}", serial.size(), size));
    }
    const cJSON* item = array->child;
    for (std::size_t i = 0; i < serial.size(); ++i, item = item->next) {
        BOOST_OUTCOME_TRY(serial[i], read_byte(item, i));
    }
    return serial;
}

} // namespace xpon::api_service
