#pragma once

#include "serializer/field.hpp"

#include <cjson/cJSON.h>

namespace xpon::serializer {

/// The serialisers of the public header, for a record of any table.
/// @{
int serialize_record(const Table& table, const void* record, cJSON* target, cJSON** errors) noexcept;
int deserialize_record(const Table& table, const cJSON* data, void* record, cJSON** errors) noexcept;
/// @}

} // namespace xpon::serializer
