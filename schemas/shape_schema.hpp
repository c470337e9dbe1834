#pragma once

#include "api_service/protocol/shape.hpp"
#include "schemas/field_schema.hpp"
#include "schemas/json.hpp"

namespace xpon::schemas {

/// The schema of what a handler answers or takes. Parts with a name are added to `definitions` and referred to.
Json schema_of(const api_service::Shape& shape, const RecordSchemas& records, Json& definitions);

} // namespace xpon::schemas
