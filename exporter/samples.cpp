#include "exporter/samples.hpp"

#include <algorithm>
#include <string_view>
#include <utility>

#include <prometheus/metric_family.h>
#include <prometheus/text_serializer.h>

namespace xpon::exporter {
namespace {

std::vector<std::string> names_of(std::string_view list) {
    std::vector<std::string> names;
    while (!list.empty()) {
        names.emplace_back(list.substr(0, list.find(',')));
        list.remove_prefix(std::min(list.size(), names.back().size() + 1));
    }
    return names;
}

} // namespace

Samples::Labels Samples::labels(std::vector<std::string> values) {
    label_values_.push_back(std::move(values));
    return static_cast<Labels>(label_values_.size() - 1);
}

void Samples::add(Metric metric, double value, Labels labels) {
    samples_.at(static_cast<std::size_t>(metric)).push_back({value, labels});
}

void Samples::write(std::ostream& out) const {
    for (std::size_t i = 0; i < samples_.size(); ++i) {
        if (samples_.at(i).empty()) {
            continue;
        }
        const auto& about = description_of(static_cast<Metric>(i));
        const auto names = names_of(about.labels);
        std::vector<prometheus::MetricFamily> families(1);
        auto& family = families.front();
        family.name = about.name;
        family.help = about.help;
        family.type = about.type;
        family.metric.reserve(samples_.at(i).size());
        for (const auto& sample : samples_.at(i)) {
            auto& metric = family.metric.emplace_back();
            (about.type == prometheus::MetricType::Counter ? metric.counter.value : metric.gauge.value) = sample.value;
            const auto& values = label_values_.at(static_cast<std::size_t>(sample.labels));
            for (std::size_t label = 0; label < names.size(); ++label) {
                metric.label.push_back({names.at(label), values.at(label)});
            }
        }
        prometheus::TextSerializer().Serialize(out, families);
    }
}

} // namespace xpon::exporter
