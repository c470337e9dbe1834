#include "client/oltctl/commands/context.hpp"
#include "client/oltctl/commands/syntax.hpp"
#include "client/oltctl/configuration/index_list.hpp"
#include "client/oltctl/failure.hpp"
#include "client/oltctl/olt_folder.hpp"
#include "client/oltctl/output/progress.hpp"
#include "client/oltctl/output/terminal.hpp"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

constexpr Column firmware_columns[] = {
    {"Runs", "active_fw"}, {"Other slot", "inactive_fw"}, {"Next start", "next_boot_fw"}};

core::JsonTree firmware(Context& context) {
    auto system = context.service().ask({.path = "monitoring.system", .method = "get"});
    return core::JsonTree(cJSON_DetachItemFromObjectCaseSensitive(system.data.get(), "device_info"));
}

std::string other_slot(Context& context) {
    return cell_text(value_at(firmware(context).get(), "inactive_fw"));
}

void show_firmware(Context& context) {
    const auto info = firmware(context);
    const core::JsonTree slots(cJSON_CreateObject());
    for (const auto& column : firmware_columns) {
        cJSON_AddStringToObject(slots.get(), column.path, cell_text(info.get(), column).c_str());
    }
    const core::JsonTree rows(cJSON_CreateArray());
    cJSON_AddItemReferenceToArray(rows.get(), slots.get());
    if (context.as_json) {
        context.show_object(slots.get());
    } else {
        context.show_rows(rows.get(), firmware_columns);
    }
}

void install_firmware(Context& context, const std::string& file) {
    if (!std::filesystem::is_regular_file(file)) {
        throw Failure(ExitStatus::usage, fmt::format("There is no file '{}'.", file));
    }
    const auto path = name_for_service(file);
    constexpr unsigned longest_write_s = 900;
    context.patience_s = std::max(context.patience_s, longest_write_s);
    const auto before = other_slot(context);
    if (a_person_is_there()) {
        context.confirm(
            fmt::format("Replace the firmware {} in the slot that does not run?", before.empty() ? "(none)" : before));
    }
    client::Request request{.path = "command.olt.firmware.update", .method = "command"};
    request.data.reset(cJSON_CreateObject());
    cJSON_AddStringToObject(request.data.get(), "path", path.c_str());
    show_time_of(fmt::format("Writing {}", path.filename().string()), [&] { context.service().ask(request); });
    if (!context.as_json) {
        print(
            fmt::format("Firmware {} is installed. `oltctl firmware select alternate` and `oltctl reboot` start it.\n",
                        other_slot(context)));
    }
}

void add_firmware(CommandSyntax program, Context& context) {
    const auto parser = program.add_command("firmware", "The firmware of the OLT: what is in its two slots");
    parser.does(context, [&context] { show_firmware(context); });
    const auto installer =
        parser.add_command("install", "Write an image to the slot that does not run; what runs goes on");
    const auto file = std::make_shared<std::string>();
    installer.add_option("FILE", *file, "the image").required().type_name("");
    installer.does(context, [&context, file] { install_firmware(context, *file); });

    const auto selector = parser.add_command("select", "Which slot the next start of the OLT runs");
    const auto slot = std::make_shared<std::string>();
    selector.add_option("SLOT", *slot, "current, the one that runs, or alternate, the other")
        .required()
        .one_of({"current", "alternate"})
        .type_name("");
    selector.does(context, [&context, slot] {
        context.service().ask({.path = "command.olt.firmware.select_image." + *slot, .method = "command"});
    });
    parser.allow_command();
}

void add_reconfigure(CommandSyntax program, Context& context) {
    const auto parser =
        program.add_command("reconfigure", "Restart the PON ports, all or some; the OLT itself goes on");
    parser.add_command("olt", "All of them").does(context, [&context] {
        context.confirm("Restart all PON ports? All subscribers lose their service for a minute.");
        context.service().ask({.path = "command.reconfigure.olt", .method = "command"});
    });
    const auto port = parser.add_command("port", "Some");
    const auto list = std::make_shared<std::string>();
    port.add_option("PORTS", *list, "such as 3 or 1-4,7").required().type_name("");
    port.does(context, [&context, list] {
        numbers_of(*list); // looked at before anybody is asked
        context.confirm(fmt::format("Restart PON port {}? Its subscribers lose their service for a minute.", *list));
        context.service().ask({.path = "command.reconfigure.pon_port", .method = "command", .indices = {*list}});
    });
    parser.require_command();
}

} // namespace

void add_device_commands(CommandSyntax program, Context& context) {
    add_firmware(program, context);
    add_reconfigure(program, context);
}

} // namespace xpon::oltctl
