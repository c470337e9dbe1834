#pragma once

#include "simulator/simulation/simulation.hpp"
#include "xpon/core/logger.hpp"
#include "xpon/core/result.hpp"

#include <functional>
#include <memory>

namespace xpon::simulator {

/// Simulates the OLT below OLT_ROOT until a stop is asked for. `ready` is called once every peer can be reached.
core::Result<void> run(const Options& options, const std::shared_ptr<core::ILogger>& logger,
                       const std::function<void()>& ready);

} // namespace xpon::simulator
