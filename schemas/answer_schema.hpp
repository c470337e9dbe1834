#pragma once

#include "schemas/route_data.hpp"

namespace xpon::schemas {

/// The schema of a route's whole answers, also of those that refuse.
Json answer_schema(const RouteRow& row, const RecordSchemas& records);

/// The texts of the errors, in the order of their index.
Json error_texts();

} // namespace xpon::schemas
