#pragma once

#include "api_service/core_names.hpp"
#include "api_service/protocol/json_writer.hpp"
#include "api_service/protocol/shape.hpp"
#include "xpon/custom_layer/device.h"
#include "xpon/custom_layer/system.h"

#include <string>

#include <cjson/cJSON.h>

namespace xpon::api_service {

extern const Shape device_info_shape;
extern const Shape factory_info_shape;

/// Adds "device_info": what runs on the board, and since when. The board's own versions come from `environment`.
Result<void> add_device_info(ILogger& logger, JsonWriter& root, const System_environment_data& environment);

/// Adds "factory_info": who the board is.
Result<void> add_factory_info(ILogger& logger, JsonWriter& root);

Result<Factory_info> get_factory_info(ILogger& logger);

/// The short name of the device's kind. Asked once, then remembered for the life of the process; a failure is not.
Result<std::string> get_short_device_name(ILogger& logger);

} // namespace xpon::api_service
