#include "simulator/control/event_filter.hpp"

#include "simulator/control/json_members.hpp"
#include "xpon/core/json_tree.hpp"

#include <algorithm>
#include <chrono>
#include <ranges>
#include <string_view>

#include <fmt/chrono.h>
#include <fmt/format.h>

namespace xpon::simulator {

EventFilter parse_filter(const CommandFields& fields) {
    EventFilter filter{.kinds = {}, .target = fields.text("target")};
    const auto wanted = fields.text("watch");
    for (const auto part : std::views::split(wanted, ',')) {
        const std::string_view name(part.begin(), part.end());
        const auto kind = std::ranges::find(event_kind_names, name);
        if (name == "all") {
            filter.kinds.set();
        } else if (kind != event_kind_names.end()) {
            filter.kinds.set(static_cast<std::size_t>(kind - event_kind_names.begin()));
        } else {
            throw CommandError(fmt::format("there are no events '{}'; watch takes all, or {}", name,
                                           fmt::join(event_kind_names, ",")));
        }
    }
    return filter;
}

std::string to_json_line(const Event& event) {
    const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    const core::JsonTree line(cJSON_CreateObject());
    add(line.get(), "event", std::string(name_of(event.kind)));
    add(line.get(), "target", event.target);
    add(line.get(), "time_s", seconds_of(event.at));
    add(line.get(), "text", event.text);
    add(line.get(), "wall", fmt::format("{:%FT%TZ}", fmt::gmtime(now)));
    return core::print_line(line.get()).get();
}

} // namespace xpon::simulator
