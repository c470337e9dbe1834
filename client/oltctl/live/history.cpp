#include "client/oltctl/live/history.hpp"

#include "client/oltctl/live/screen.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

constexpr std::size_t kept_values = 120;
constexpr std::array<std::string_view, 8> blocks{"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
constexpr std::array<std::string_view, 8> plain_blocks{"_", ".", ":", "-", "=", "+", "*", "#"};

} // namespace

void History::add(double value) {
    values_.push_back(value);
    if (values_.size() > kept_values) {
        values_.pop_front();
    }
}

std::optional<double> History::last() const {
    return values_.empty() ? std::nullopt : std::optional(values_.back());
}

bool History::has_moved() const {
    return std::ranges::any_of(values_, [&](double value) { return value != values_.front(); });
}

std::string History::sparkline(std::size_t width, bool from_zero) const {
    const auto count = std::min(width, values_.size());
    std::string line(width - count, ' ');
    if (count == 0) {
        return line;
    }
    const auto& marks = has_unicode() ? blocks : plain_blocks;
    const auto begin = values_.end() - static_cast<std::ptrdiff_t>(count);
    const auto [least, highest] = std::minmax_element(begin, values_.end());
    const double low = from_zero ? std::min(0.0, *least) : *least;
    const double range = *highest - low;
    for (auto value = begin; value != values_.end(); ++value) {
        const auto step = range > 0 ? std::lround((*value - low) / range * static_cast<double>(marks.size() - 1)) : 0;
        line += marks.at(static_cast<std::size_t>(step));
    }
    return line;
}

void Rate::add(double counter, double seconds) {
    const auto passed = seconds - seconds_;
    if (counter_ && passed > 0 && counter >= *counter_) {
        per_second_ = (counter - *counter_) / passed;
        history_.add(*per_second_);
    } else {
        per_second_.reset();
    }
    counter_ = counter;
    seconds_ = seconds;
}

std::string short_number(double value) {
    constexpr std::string_view units = " kMGT";
    std::size_t unit = 0;
    while (std::fabs(value) >= 999.5 && unit + 1 < units.size()) {
        value /= 1000;
        ++unit;
    }
    const auto digits = unit == 0 && value == std::floor(value) ? 0
                        : std::fabs(value) < 9.995              ? 2
                        : std::fabs(value) < 99.95              ? 1
                                                                : 0;
    auto text = fmt::format("{:.{}f}", value, digits);
    if (unit > 0) {
        text += units[unit];
    }
    return text;
}

} // namespace xpon::oltctl
