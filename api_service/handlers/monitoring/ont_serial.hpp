#pragma once

#include "api_service/core_names.hpp"
#include "xpon/custom_layer/onts.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include <cjson/cJSON.h>

namespace xpon::api_service {

/// A serial number as the device reports it and as clients write it.
using OntSerial = std::array<std::uint8_t, ont_serial_bin_size>;

struct OntSerialHash {
    std::size_t operator()(const OntSerial& serial) const;
};

OntSerial make_serial(std::span<const std::uint8_t, ont_serial_bin_size> bytes);
/// From the form in which the configuration stores it.
OntSerial make_serial(std::uint64_t configured);

/// The serial number in a JSON array of bytes. The error says which item is wrong, and why.
Result<OntSerial> get_serial_from_array(const cJSON* array);

} // namespace xpon::api_service
