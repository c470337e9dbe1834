#pragma once

#include "xpon/core/error.hpp"
#include "xpon/core/error_payload.hpp"
#include "xpon/core/json_tree.hpp"
#include "xpon/core/logger.hpp"
#include "xpon/core/result.hpp"

/// The types of core that all of the daemon speaks in go by their own names here.
namespace xpon::api_service {

using core::Error;
using core::ErrorPayload;
using core::ILogger;
using core::JsonText;
using core::JsonTree;
using core::Result;

} // namespace xpon::api_service
