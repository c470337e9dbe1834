#pragma once

#include "simulator/plant/equipment.hpp"
#include "simulator/plants/described_value.hpp"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace xpon::simulator {

// The hardware in the description of a plant. All calls throw DescriptionError.

/// Modules by the names under which the ports of the same description have them.
using Modules = std::map<std::string, ModuleModel, std::less<>>;

BoardModel board_of(const DescribedValue& board);
Modules modules_of(const DescribedValue& modules);
/// At least one.
std::vector<OntModel> ont_models_of(const DescribedValue& models);
/// "SIMUA0030011": four letters and eight hexadecimal digits [G.984.3 9.2].
std::uint64_t serial_number_of(const DescribedValue& text);

} // namespace xpon::simulator
