#pragma once

#include "xpon/logger/logger.hpp"

namespace xpon::logger {

/// Writes to a category that zlog gave out.
class CategoryLogger : public Logger {
public:
    explicit CategoryLogger(zlog_category_s* category) : Logger(category) {}
};

} // namespace xpon::logger
