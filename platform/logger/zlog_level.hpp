#pragma once

#include "xpon/core/logger.hpp"

#include <zlog.h>

namespace xpon::logger {

/// zlog counts its levels in steps of 20 from 20.
constexpr int zlog_level_of(core::LogLevel level) {
    return ZLOG_LEVEL_DEBUG + static_cast<int>(level) * (ZLOG_LEVEL_INFO - ZLOG_LEVEL_DEBUG);
}
static_assert(zlog_level_of(core::LogLevel::Error) == ZLOG_LEVEL_ERROR);
static_assert(zlog_level_of(core::LogLevel::Fatal) == ZLOG_LEVEL_FATAL);

} // namespace xpon::logger
