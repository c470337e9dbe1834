#pragma once

#include "exporter/samples.hpp"

namespace xpon::exporter {

/// The exporter itself, in the metrics that all programs have.
void read_process(Samples& samples);

} // namespace xpon::exporter
