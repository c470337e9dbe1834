#pragma once

#include "schemas/field_schema.hpp"

#include <string>

namespace xpon::schemas {

/// The TypeScript declaration file of the API: records, answers, and what each route takes and gives.
std::string type_declarations(const RecordSchemas& records);

} // namespace xpon::schemas
