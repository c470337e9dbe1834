#pragma once

#include "schemas/route_data.hpp"

namespace xpon::schemas {

/// The schema of a route's requests. What the daemon ignores is not in it.
Json request_schema(const RouteRow& row, const RecordSchemas& records);

} // namespace xpon::schemas
