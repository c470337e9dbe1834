#include "client/oltctl/commands/context.hpp"
#include "client/oltctl/commands/syntax.hpp"
#include "client/oltctl/output/terminal.hpp"
#include "xpon/client/serial_number.hpp"

#include <span>
#include <string>

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

std::string minutes_text(const cJSON* milliseconds) {
    return fmt::format("{:.0f} min", milliseconds->valuedouble / 60000);
}

std::string duration_text(const cJSON* seconds) {
    const auto whole = static_cast<long long>(seconds->valuedouble);
    return fmt::format("{}d {:02}:{:02}", whole / 86400, whole / 3600 % 24, whole / 60 % 60);
}

constexpr Column front_port_columns[] = {
    {"Front port", "port", nullptr, true},
    {"Link", "status"},
    {"Speed", "speed"},
    {"Module", "sfp.part_number"},
    {"Vendor", "sfp.vendor"},
    {"Medium", "sfp.media"},
    {"deg C", "eddi.temperature_c", nullptr, true},
    {"Tx mW", "eddi.tx_power_mw", nullptr, true},
};

constexpr Column pon_port_columns[] = {
    {"PON port", "port", nullptr, true},
    {"State", "state"},
    {"ONTs", "ont_count", nullptr, true},
    {"Module", "sfp.part_number"},
    {"Vendor", "sfp.vendor"},
    {"deg C", "eddi.temperature_c", nullptr, true},
    {"Tx dBm", "eddi.tx_power_dbm", nullptr, true},
};

constexpr Column dhcp_columns[] = {
    {"DHCP client", "mac"},
    {"PON port", "pon_port_id", nullptr, true},
    {"ONT", "ont_id", nullptr, true},
    {"Service", "service_id", nullptr, true},
    {"Serial", "ont_serial", client::serial_text},
    {"IP address", "ip"},
    {"VLAN", "outer_vid", nullptr, true},
    {"Left", "life_time_msec", minutes_text, true},
};

constexpr Column pppoe_columns[] = {
    {"PPPoE client", "client_mac"},
    {"PON port", "pon_port_id", nullptr, true},
    {"ONT", "ont_id", nullptr, true},
    {"Serial", "ont_serial", client::serial_text},
    {"Session", "session_id", nullptr, true},
    {"GEM port", "gem_port", nullptr, true},
    {"Up", "duration_sec", duration_text, true},
};

constexpr Column mac_columns[] = {
    {"MAC address", "mac"},
    {"Port", "port"},
    {"ONT", "ont"},
    {"S-VLAN", "svid", nullptr, true},
    {"C-VLAN", "cvid", nullptr, true},
    {"GEM port", "gem", nullptr, true},
    {"Type", "type"},
};

constexpr Column log_columns[] = {{"Log file", ""}};

/// A part of what a command shows: the answer of a route, or a member of it.
struct Part {
    const char* path;
    const char* count; ///< the constant that tells the last index; null: no indices
    const char* rows;  ///< the member that holds the rows; "": the answer itself
    const char* title; ///< of the part in JSON
    std::span<const Column> columns;
};

constexpr Part port_parts[] = {
    {"monitoring.interface.front_port.state", "FRONT_PORT_COUNT", "", "front_ports", front_port_columns},
    {"monitoring.interface.pon_port.state", "PON_PORT_COUNT", "", "pon_ports", pon_port_columns},
};
constexpr Part lease_parts[] = {
    {"monitoring.ip.dhcp.sessions", nullptr, "sessions", "dhcp", dhcp_columns},
    {"monitoring.ip.pppoe.sessions", nullptr, "sessions", "pppoe", pppoe_columns},
};
constexpr Part mac_parts[] = {{"monitoring.mac", nullptr, "", "macs", mac_columns}};
constexpr Part log_parts[] = {{"monitoring.logs", nullptr, "log_files", "logs", log_columns}};

struct Command {
    const char* name;
    const char* meaning;
    std::span<const Part> parts;
};

constexpr Command commands[] = {
    {"ports", "State and modules of the front ports and PON ports", port_parts},
    {"leases", "DHCP leases and PPPoE sessions of the subscribers", lease_parts},
    {"macs", "Addresses that the switch has learned", mac_parts},
    {"logs", "The names of the log files", log_parts},
};

void show(Context& context, const Command& command) {
    const core::JsonTree all(cJSON_CreateObject());
    core::JsonTree constants;
    for (const auto& part : command.parts) {
        client::Request request{.path = part.path, .method = "get"};
        if (part.count != nullptr) {
            if (!constants) {
                constants = context.service().ask({.path = "monitoring.constants", .method = "get"}).data;
            }
            request.indices.push_back("1-" + cell_text(value_at(constants.get(), part.count)));
        }
        auto answer = context.service().ask(request);
        const auto* const rows = value_at(answer.data.get(), part.rows);
        if (context.as_json) {
            cJSON_AddItemToObject(all.get(), part.title, cJSON_Duplicate(rows, 1));
            continue;
        }
        if (&part != &command.parts.front()) {
            print("\n");
        }
        context.show_rows(rows, part.columns);
    }
    if (context.as_json) {
        context.show_object(command.parts.size() == 1 ? all->child : all.get());
    }
}

} // namespace

void add_status_commands(CommandSyntax program, Context& context) {
    program.add_command("system", "Memory, load, fans, temperatures, power and firmware of the OLT")
        .does(context, [&context] {
            context.show_object(context.service().ask({.path = "monitoring.system", .method = "get"}).data.get());
        });
    for (const auto& command : commands) {
        program.add_command(command.name, command.meaning).does(context, [&context, &command] {
            show(context, command);
        });
    }
}

} // namespace xpon::oltctl
