#include "client/oltctl/commands/context.hpp"
#include "client/oltctl/commands/syntax.hpp"
#include "client/oltctl/configuration/index_list.hpp"
#include "client/oltctl/failure.hpp"
#include "client/oltctl/ont_number.hpp"
#include "xpon/client/serial_number.hpp"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

constexpr Column ont_columns[] = {
    {"PON port", "cfg_port", nullptr, true},      {"ONT", "cfg_ont_id", nullptr, true},
    {"Serial", "serial", client::serial_text},    {"State", "state"},
    {"RSSI dBm", "ont_info.rssi", nullptr, true}, {"Metres", "ont_info.distance", nullptr, true},
    {"Seen at", "port", nullptr, true},           {"Model", "ont_info.equipment_id"},
    {"Software", "ont_info.software_version"},    {"Description", "description"},
};

/// What ONTs can be sorted by.
struct SortKey {
    const char* name;
    const char* path;
};
constexpr SortKey sort_keys[] = {{"rssi", "ont_info.rssi"},
                                 {"distance", "ont_info.distance"},
                                 {"state", "state"},
                                 {"description", "description"},
                                 {"model", "ont_info.equipment_id"}};

struct Choice {
    std::string ports; ///< a list; empty for all
    std::string state;
    std::string order;
};

std::string lower(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

bool comes_before(const cJSON* left, const cJSON* right, const char* path) {
    const auto* const a = value_at(left, path);
    const auto* const b = value_at(right, path);
    if (a == nullptr || b == nullptr) {
        return a != nullptr; // those of which nothing is known are last
    }
    return cJSON_IsNumber(a) != 0 && cJSON_IsNumber(b) != 0 ? a->valuedouble < b->valuedouble
                                                            : cell_text(a) < cell_text(b);
}

/// Whether the ONT is configured at one of the ports, or was seen there; none means all. The service tells the ONTs
/// that nobody configured of every port.
bool is_behind(const cJSON* row, const std::vector<unsigned>& ports) {
    const auto is_at = [&](const char* key) {
        const auto* const port = value_at(row, key);
        return port != nullptr && std::ranges::binary_search(ports, static_cast<unsigned>(port->valueint));
    };
    return ports.empty() || is_at("cfg_port") || is_at("port");
}

void show_onts(Context& context, const Choice& choice) {
    client::Request request{.path = "monitoring.interface.ont.state", .method = "get"};
    if (!choice.ports.empty()) {
        request.indices = {choice.ports, "1-256"};
    }
    const auto ports = choice.ports.empty() ? std::vector<unsigned>() : numbers_of(choice.ports);
    const auto answer = context.service().ask(request);
    std::list<cJSON*> rows; // which keeps the order of equal ones
    while (answer.data && answer.data->child != nullptr) {
        rows.push_back(cJSON_DetachItemViaPointer(answer.data.get(), answer.data->child));
    }
    const core::JsonTree chosen(cJSON_CreateArray());
    const auto* const order = std::ranges::find(sort_keys, choice.order, &SortKey::name);
    if (order != std::end(sort_keys)) {
        rows.sort([&](const auto* a, const auto* b) { return comes_before(a, b, order->path); });
    }
    for (auto* row : rows) {
        core::JsonTree owned(row);
        if (is_behind(row, ports) &&
            lower(cell_text(value_at(row, "state"))).find(lower(choice.state)) != std::string::npos) {
            cJSON_AddItemToArray(chosen.get(), owned.release());
        }
    }
    context.show_rows(chosen.get(), ont_columns);
}

/// What is shown of one ONT, in this order.
struct OntPart {
    const char* title;
    const char* path;
    const char* config_type;
    enum class Asked { ont, all_services, slash } asked;
};

constexpr OntPart ont_parts[] = {
    {"state", "monitoring.interface.ont.state", nullptr, OntPart::Asked::ont},
    {"configuration", "configuration.ZebGCfg.pon.ont", "running", OntPart::Asked::ont},
    {"services", "configuration.ZebGCfg.pon.ont.service", "running", OntPart::Asked::all_services},
    {"counters", "monitoring.interface.ont.counters.olt_side.gem_port", nullptr, OntPart::Asked::ont},
    {"addresses", "monitoring.mac", nullptr, OntPart::Asked::slash},
};

constexpr const char* ont_counters[] = {
    "gem_port_performance_monitoring",
    "gem_port_nctp_performance_monitoring",
    "ethernet_performance_monitoring_history_data",
    "ethernet_performance_monitoring_history_data_2",
    "ethernet_performance_monitoring_history_data_3",
    "gal_ethernet_performance_monitoring_history_data",
    "fec_performance_monitoring_history_data",
    "ethernet_frame_extended_performance_monitoring",
};
constexpr std::pair<const char*, const char*> ont_sessions[] = {
    {"leases", "monitoring.ip.dhcp.sessions"},
    {"pppoe_sessions", "monitoring.ip.pppoe.sessions"},
};

std::vector<std::string> indices_for(const OntPart& part, const OntNumber& ont) {
    switch (part.asked) {
    case OntPart::Asked::all_services:
        return {ont.port, ont.ont, "1-8"};
    case OntPart::Asked::slash:
        return {ont.port + "/" + ont.ont};
    case OntPart::Asked::ont:
        break;
    }
    return {ont.port, ont.ont};
}

/// The rows of that ONT; the service gives those of all.
core::JsonTree sessions_of(Context& context, const char* path, const OntNumber& ont) {
    const auto all = context.service().ask({.path = path, .method = "get"});
    core::JsonTree own(cJSON_CreateArray());
    const cJSON* row = nullptr;
    cJSON_ArrayForEach(row, value_at(all.data.get(), "sessions")) {
        if (cell_text(value_at(row, "pon_port_id")) == ont.port && cell_text(value_at(row, "ont_id")) == ont.ont) {
            cJSON_AddItemToArray(own.get(), cJSON_Duplicate(row, 1));
        }
    }
    return own;
}

/// The counters that the ONT itself keeps, by kind.
core::JsonTree counters_of(Context& context, const OntNumber& ont) {
    core::JsonTree kinds(cJSON_CreateObject());
    for (const auto* kind : ont_counters) {
        auto answer = context.service().ask({.path = std::string("monitoring.interface.ont.counters.ont_side.") + kind,
                                             .method = "get",
                                             .indices = {ont.port, ont.ont}});
        if (auto* const counters = cJSON_DetachItemFromArray(answer.data.get(), 0)) {
            cJSON_AddItemToObject(kinds.get(), kind, counters);
        }
    }
    return kinds;
}

/// Serials become texts, at any depth, in what people read.
void write_serials(cJSON* tree) {
    for (auto* member = tree->child; member != nullptr; member = member->next) {
        if (member->string != nullptr && std::string_view(member->string).ends_with("serial") &&
            cJSON_IsArray(member) != 0) {
            auto* const text = cJSON_CreateString(client::serial_text(member).c_str());
            cJSON_ReplaceItemInObjectCaseSensitive(tree, member->string, text);
            member = text;
        }
        write_serials(member);
    }
}

/// With the state of an ONT the service tells those that nobody configured.
void drop_unconfigured(cJSON* rows) {
    for (auto* row = rows == nullptr ? nullptr : rows->child; row != nullptr;) {
        auto* const next = row->next;
        if (cJSON_GetObjectItemCaseSensitive(row, "state") != nullptr && value_at(row, "cfg_port") == nullptr) {
            cJSON_Delete(cJSON_DetachItemViaPointer(rows, row));
        }
        row = next;
    }
}

void show_ont(Context& context, const std::string& text) {
    const auto ont = parse_ont_number(text);
    const core::JsonTree screen(cJSON_CreateObject());
    for (const auto& part : ont_parts) {
        const auto config_type =
            part.config_type == nullptr ? std::nullopt : std::optional<std::string>(part.config_type);
        auto answer = context.service().ask(
            {.path = part.path, .method = "get", .indices = indices_for(part, ont), .config_type = config_type});
        drop_unconfigured(answer.data.get());
        const bool is_single = cJSON_GetArraySize(answer.data.get()) == 1 && part.asked == OntPart::Asked::ont;
        cJSON_AddItemToObject(screen.get(), part.title,
                              is_single ? cJSON_DetachItemFromArray(answer.data.get(), 0) : answer.data.release());
    }
    cJSON_AddItemToObject(screen.get(), "ont_counters", counters_of(context, ont).release());
    for (const auto& [title, path] : ont_sessions) {
        cJSON_AddItemToObject(screen.get(), title, sessions_of(context, path, ont).release());
    }
    if (!context.as_json) {
        write_serials(screen.get());
    }
    context.show_object(screen.get());
}

void find_ont(Context& context, const std::string& serial) {
    client::Request request{.path = "utils.ont.find", .method = "call", .config_type = "running"};
    request.data.reset(cJSON_CreateObject());
    auto bytes = client::parse_serial(serial);
    if (!bytes) {
        throw Failure(ExitStatus::usage,
                      fmt::format("'{}' is no serial. Write SIMUA0030011 or 53494D55A0030011.", serial));
    }
    cJSON_AddItemToObject(request.data.get(), "serial", bytes.release());
    const auto answer = context.service().ask(request);
    if (const auto* const found = value_at(answer.data.get(), "monitoring");
        found == nullptr || found->child == nullptr) {
        throw Failure(ExitStatus::refused, fmt::format("No ONT {} is configured or connected.", serial));
    }
    if (!context.as_json) {
        write_serials(answer.data.get());
    }
    context.show_object(answer.data.get());
}

/// What ONTs can be told to do.
struct Order {
    const char* name;
    const char* meaning;
    const char* path;
    const char* question;
};
constexpr Order orders[] = {
    {"reboot", "Have ONTs restart", "command.reboot.ont",
     "Restart ONT {}? Its subscribers lose their service for a minute."},
    {"reconfigure", "Configure ONTs anew, from the beginning", "command.reconfigure.ont",
     "Configure ONT {} anew? Its subscribers lose their service for a moment."},
    {"reset", "Have ONTs forget what they keep themselves, and restart", "command.resettodefault.ont",
     "Reset ONT {}? What was set on it by hand is lost, and its subscribers lose their service for a minute."},
};

void give(Context& context, const Order& order, const std::string& text) {
    const auto onts = parse_ont_number(text);
    context.confirm(fmt::format(fmt::runtime(order.question), text));
    context.service().ask({.path = order.path, .method = "command", .indices = {onts.port + "/" + onts.ont}});
}

} // namespace

void add_ont_commands(CommandSyntax program, Context& context) {
    const auto onts = program.add_command("onts", "All ONTs, configured or not, and their state");
    const auto choice = std::make_shared<Choice>();
    onts.add_option("--port", choice->ports, "of these PON ports only, such as 3 or 1-4");
    onts.add_option("--state", choice->state, "in this state only, such as operational");
    std::vector<std::string> names;
    std::ranges::transform(sort_keys, std::back_inserter(names), &SortKey::name);
    onts.add_option("--sort", choice->order, "in another order than that of their numbers").one_of(names);
    onts.does(context, [&context, choice] { show_onts(context, *choice); });

    const auto ont = program.add_command("ont", "One ONT: all there is to know, or what to do with it");
    const auto word = std::make_shared<std::string>();
    ont.add_option("ONT", *word, "PON port and ONT, such as 3/17").type_name("");
    const auto add = [&](const char* name, const char* meaning, const char* option, auto run) {
        const auto verb = ont.add_command(name, meaning);
        verb.add_option(option, *word).required().type_name("");
        verb.does(context, [word, run] { run(*word); });
    };
    add("find", "The ONT with this serial", "SERIAL",
        [&context](const std::string& serial) { find_ont(context, serial); });
    for (const auto& order : orders) {
        add(order.name, order.meaning, "ONTS",
            [&context, &order](const std::string& text) { give(context, order, text); });
    }
    ont.allow_command();
    ont.does(context, [&context, word] { show_ont(context, *word); });
}

} // namespace xpon::oltctl
