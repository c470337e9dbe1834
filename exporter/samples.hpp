#pragma once

#include "exporter/metrics.hpp"

#include <array>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace xpon::exporter {

/// The values of one collection. Kept small, because a full plant has some 65000 of them; Prometheus' own records, a
/// quarter of a kilobyte each, exist for one metric at a time while it is written.
class Samples {
public:
    /// Values of labels that samples of several metrics share.
    enum class Labels : std::uint32_t { none = 0 };

    /// Valid for this object. As many values as the metrics name, in their order.
    Labels labels(std::vector<std::string> values);
    void add(Metric metric, double value, Labels labels = Labels::none);

    /// The text that a scrape gets.
    void write(std::ostream& out) const;

private:
    struct Sample {
        double value;
        Labels labels;
    };

    std::vector<std::vector<std::string>> label_values_{{}};
    std::array<std::vector<Sample>, metric_count> samples_;
};

} // namespace xpon::exporter
