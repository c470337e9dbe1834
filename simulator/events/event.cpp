#include "simulator/events/event.hpp"

#include <fmt/format.h>

namespace xpon::simulator {

std::string to_line(const Event& event) {
    return fmt::format("{:.3f} {} {}{}{}", seconds_of(event.at), name_of(event.kind), event.target,
                       event.target.empty() ? "" : " ", event.text);
}

bool is_about(const Event& event, std::string_view target) {
    static constexpr std::string_view pon = "pon/";
    if (target.empty() || event.target == target) {
        return true;
    }
    if (target.starts_with(pon) && !event.target.starts_with(pon)) {
        target.remove_prefix(pon.size());
    }
    return event.target.size() > target.size() && event.target.starts_with(target) &&
           event.target[target.size()] == '/';
}

} // namespace xpon::simulator
