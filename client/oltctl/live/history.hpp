#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <string>

namespace xpon::oltctl {

/// The latest values of one quantity, drawn as a sparkline.
class History {
public:
    void add(double value);
    [[nodiscard]] std::optional<double> last() const;
    /// Whether there were different ones.
    [[nodiscard]] bool has_moved() const;

    /// One character for each of the last `width` values, the latest at the right; the highest of them is a full block,
    /// and the lowest, or 0 for `from_zero`, the least. Blanks where there was none yet.
    [[nodiscard]] std::string sparkline(std::size_t width, bool from_zero) const;

private:
    std::deque<double> values_;
};

/// What a counter rises by in a second, from two readings. Counters that started anew have no rate for that time.
class Rate {
public:
    /// `seconds`: a time that never stands still or runs back.
    void add(double counter, double seconds);
    [[nodiscard]] std::optional<double> per_second() const {
        return per_second_;
    }
    [[nodiscard]] const History& history() const {
        return history_;
    }

private:
    std::optional<double> counter_;
    double seconds_ = 0;
    std::optional<double> per_second_;
    History history_;
};

/// A number of four figures at most with k, M, G or T behind it where it takes that: "52.1M".
std::string short_number(double value);

} // namespace xpon::oltctl
