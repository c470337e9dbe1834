#pragma once

#include "client/oltctl/live/screen.hpp"
#include "client/oltctl/service.hpp"

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace xpon::oltctl {

/// Something that is read again and again and shown as it changes.
class LiveView {
public:
    LiveView() = default;
    LiveView(const LiveView&) = delete;
    LiveView& operator=(const LiveView&) = delete;
    virtual ~LiveView() = default;

    /// Reads it. Failures are those of Service.
    virtual void sample(Service& service) = 0;
    /// Lines that stay at the top, for a terminal of that many columns.
    [[nodiscard]] virtual std::vector<Line> head(std::size_t columns) const = 0;
    /// The lines below them, which can be scrolled.
    [[nodiscard]] virtual std::vector<Line> body(std::size_t columns) const = 0;
};

/// When a reading was taken: of a clock that nobody sets.
double seconds_now();

struct Pace {
    double interval_s = 2;
    unsigned count = 0; ///< samples after which it ends; 0: never
};

/// Shows it until the user types q. While there is no connection the last state stays with a note, and the connection
/// is tried again; when the session has expired the password is asked for.
void show_live(Service& service, LiveView& view, const Pace& pace);

} // namespace xpon::oltctl
