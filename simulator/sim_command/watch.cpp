#include "simulator/sim_command/watch.hpp"

#include "xpon/core/json_tree.hpp"

#include <iostream>
#include <stdexcept>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace xpon::simulator {
namespace {

std::string text_of(const cJSON* object, const char* name) {
    const auto* const member = cJSON_GetObjectItemCaseSensitive(object, name);
    return cJSON_IsString(member) != 0 ? member->valuestring : "";
}

/// As var/log/events.log has it.
std::string to_line(const cJSON* event) {
    const auto target = text_of(event, "target");
    const double time_s = cJSON_GetNumberValue(cJSON_GetObjectItemCaseSensitive(event, "time_s"));
    return fmt::format("{} {:.3f} {} {}{}{}", text_of(event, "wall"), time_s, text_of(event, "event"), target,
                       target.empty() ? "" : " ", text_of(event, "text"));
}

} // namespace

void add_watch_verb(CLI::App& app, WatchOrder& order) {
    auto* const verb = app.add_subcommand("watch", "Print what happens, as it happens; with --json as lines of JSON");
    verb->add_option("KINDS", order.kinds,
                     "olt, port, ont, alarm, session, group with commas in between (default: all)");
    verb->add_option("--of", order.target, "only what is about this: 3/17, 3/17/1, pon/3 with all its ONTs, front/2");
    verb->add_option("--count", order.count, "end after so many events");
    verb->callback([&order] { order.is_given = true; });
}

void watch(ControlClient& client, const WatchOrder& order, bool as_json) {
    const core::JsonTree command(cJSON_CreateObject());
    cJSON_AddStringToObject(command.get(), "watch", order.kinds.c_str());
    cJSON_AddStringToObject(command.get(), "target", order.target.c_str());
    const core::JsonTree answer(cJSON_Parse(client.ask(core::print_line(command.get()).get()).c_str()));
    if (const auto error = text_of(answer.get(), "error"); !error.empty()) {
        throw std::runtime_error(error);
    }
    for (unsigned count = 0; !order.count || count < *order.count; ++count) {
        const auto line = client.next_event();
        if (line.empty()) {
            return;
        }
        const core::JsonTree event(cJSON_Parse(line.c_str()));
        std::cout << (as_json ? line : to_line(event.get())) << std::endl;
    }
}

} // namespace xpon::simulator
