#pragma once

#include "client/oltctl/output/table.hpp"
#include "client/oltctl/service.hpp"
#include "xpon/core/json_tree.hpp"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

namespace xpon::oltctl {

class CommandSyntax;

/// What all commands share: the options in front of them, and the service.
class Context {
public:
    bool as_json = false;
    bool yes = false; ///< nobody wants to be asked
    std::uint16_t port = 9999;
    unsigned patience_s = 30;

    /// The first call tells the user what has become of a commit that waited to be confirmed.
    Service& service();

    /// The rows of an array as a table, or all of it as JSON.
    void show_rows(const cJSON* array, std::span<const Column> columns) const;
    /// An object as a tree, or as JSON.
    void show_object(const cJSON* object) const;
    /// Prints the question unless `yes` is set, and ends the command unless the answer is yes.
    void confirm(const std::string& question) const;

    /// What the chosen command does. Set while the command line is read, called afterwards.
    std::function<void()> action;
    /// What the program ends with when that did not fail.
    int status = 0;

private:
    std::optional<Service> service_;
};

// Each adds the commands of its file.
void add_session_commands(CommandSyntax program, Context& context);
void add_request_commands(CommandSyntax program, Context& context);
void add_edit_commands(CommandSyntax program, Context& context);
void add_candidate_commands(CommandSyntax program, Context& context);
void add_document_commands(CommandSyntax program, Context& context);
void add_status_commands(CommandSyntax program, Context& context);
void add_ont_commands(CommandSyntax program, Context& context);
void add_editor_command(CommandSyntax program, Context& context);
void add_device_commands(CommandSyntax program, Context& context);
void add_live_commands(CommandSyntax program, Context& context);
void add_shell_commands(CommandSyntax program, Context& context);
void add_provision_command(CommandSyntax program, Context& context);

} // namespace xpon::oltctl
