#include "client/oltctl/commands/context.hpp"
#include "client/oltctl/commands/reading.hpp"
#include "client/oltctl/commands/syntax.hpp"
#include "client/oltctl/live/top_view.hpp"
#include "client/oltctl/live/watch_view.hpp"
#include "client/oltctl/output/terminal.hpp"

#include <memory>
#include <string>
#include <utility>

#include <fmt/format.h>
#include <poll.h>

namespace xpon::oltctl {
namespace {

constexpr auto shortest_interval_s = 0.2;
constexpr auto longest_interval_s = 3600.0;

/// For a reader that is no terminal: what is there first, then what changes; with --json whole answers, a line each.
void print_samples(Context& context, WatchView& view, const Pace& pace) {
    for (unsigned samples = 1;; ++samples) {
        view.sample(context.service());
        print(context.as_json ? view.json() + "\n" : view.changes());
        if (samples == pace.count) {
            return;
        }
        poll(nullptr, 0, static_cast<int>(pace.interval_s * 1000));
    }
}

void watch(Context& context, const Reading& what, const Pace& pace) {
    auto request = request_for(context, what);
    auto title = fmt::format("{}{}{}", what.path, request.indices.empty() ? "" : " ", fmt::join(request.indices, " "));
    WatchView view(std::move(request), std::move(title));
    if (context.as_json || !output_is_a_terminal()) {
        print_samples(context, view, pace);
    } else {
        show_live(context.service(), view, pace);
    }
}

void add_pace(CommandSyntax command, Pace& pace) {
    command.add_option("--interval", pace.interval_s, "seconds between two readings")
        .within(shortest_interval_s, longest_interval_s)
        .show_default();
    command.add_option("--count", pace.count, "end after so many readings");
}

} // namespace

void add_live_commands(CommandSyntax program, Context& context) {
    const auto watcher = program.add_command(
        "watch", "What stands at a path, as it changes: highlighted, counters with their rate; q ends it");
    const auto what = std::make_shared<Reading>();
    const auto pace = std::make_shared<Pace>();
    add_reading(watcher, *what);
    add_pace(watcher, *pace);
    watcher.does(context, [&context, what, pace] { watch(context, *what, *pace); });

    const auto top = program.add_command(
        "top", "The OLT at a glance: PON ports, ONTs and traffic, the weakest light first; q ends it");
    const auto top_pace = std::make_shared<Pace>();
    add_pace(top, *top_pace);
    top.does(context, [&context, top_pace] {
        TopView view;
        show_live(context.service(), view, *top_pace);
    });
}

} // namespace xpon::oltctl
