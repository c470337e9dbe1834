#include "client/oltctl/live/watch_view.hpp"

#include "client/oltctl/output/table.hpp"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

namespace xpon::oltctl {

WatchView::WatchView(client::Request request, std::string title)
    : request_(std::move(request)), title_(std::move(title)),
      has_counters_(request_.path.find(".counters.") != std::string::npos) {}

void WatchView::sample(Service& service) {
    const auto answer = service.ask(request_);
    json_ = answer.data ? core::print_line(answer.data.get()).get() : "null";
    const auto now = seconds_now();
    values_ = values_of(answer.data.get());
    for (const auto& value : values_) {
        const auto [at, is_new] = known_.try_emplace(value.place);
        auto& known = at->second;
        known.has_changed = is_new ? samples_ > 0 : known.text != value.text;
        known.text = value.text;
        if (value.number && has_counters_) {
            known.rate.add(*value.number, now);
        } else if (value.number) {
            known.history.add(*value.number);
        }
    }
    ++samples_;
}

std::vector<Line> WatchView::head(std::size_t /*columns*/) const {
    return {{{title_, Style::title}}, {}};
}

std::vector<Line> WatchView::body(std::size_t columns) const {
    std::size_t place_width = 0;
    std::size_t text_width = 0;
    for (const auto& value : values_) {
        place_width = std::max(place_width, width_of(value.place));
        text_width = std::max(text_width, width_of(value.text));
    }
    constexpr std::size_t rate_width = 9;
    place_width = std::min(place_width, columns / 2);
    text_width = std::min(text_width, columns / 4);
    const auto used = place_width + text_width + 4 + (has_counters_ ? rate_width + 2 : 0);
    const auto spark_width = std::min<std::size_t>(columns > used ? columns - used : 0, 60);
    std::vector<Line> lines;
    for (const auto& value : values_) {
        const auto& known = known_.at(value.place);
        Line line{{padded(cut(value.place, place_width), place_width, false) + "  ", Style::plain}};
        const auto rate = known.rate.per_second();
        const bool has_drawing = rate || known.history.has_moved();
        auto text = has_drawing ? padded(cut(value.text, text_width), text_width, value.number.has_value())
                                : (value.number ? padded(value.text, text_width, true) : value.text);
        line.push_back({std::move(text), known.has_changed ? Style::changed : Style::plain});
        if (rate) {
            line.push_back({padded(short_number(*rate) + "/s", rate_width + 2, true), Style::plain});
            line.push_back({"  " + known.rate.history().sparkline(spark_width, true), Style::good});
        } else if (has_drawing) {
            line.push_back({"  " + known.history.sparkline(spark_width, false), Style::good});
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

std::string WatchView::changes() const {
    std::string text;
    for (const auto& value : values_) {
        if (samples_ == 1 || known_.at(value.place).has_changed) {
            text += fmt::format("{}: {}\n", value.place, value.text);
        }
    }
    return text;
}

} // namespace xpon::oltctl
