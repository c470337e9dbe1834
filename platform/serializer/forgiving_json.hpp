#pragma once

#include "serializer/field.hpp"

#include <cstddef>
#include <string>
#include <vector>

#include <cjson/cJSON.h>

namespace xpon::serializer {

/// Fills a record from data that another version wrote, with what fits: unknown keys are skipped, and a value that the
/// table or its rules refuse gives way to the default of its field. When nothing helps the record becomes the default
/// one. `data` loses what did not fit. Returns one line per departure, "PATH: REASON". Throws std::bad_alloc only.
std::vector<std::string> read_what_fits(const Table& table, cJSON& data, std::byte* record);

} // namespace xpon::serializer
