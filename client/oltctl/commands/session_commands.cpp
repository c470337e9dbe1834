#include "client/oltctl/commands/context.hpp"
#include "client/oltctl/confirmation/guard.hpp"
#include "client/oltctl/failure.hpp"
#include "client/oltctl/output/terminal.hpp"
#include "client/oltctl/session/password.hpp"

#include <memory>
#include <string>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

struct Login {
    std::string user;
    PasswordSource source;
};

void show_session(const Context& context, const KeptSession& session) {
    if (!context.as_json) {
        print(fmt::format("{}, {}\n", session.user, session.privilege));
        return;
    }
    const core::JsonTree object(cJSON_CreateObject());
    cJSON_AddStringToObject(object.get(), "user", session.user.c_str());
    cJSON_AddStringToObject(object.get(), "privilege", session.privilege.c_str());
    context.show_object(object.get());
}

} // namespace

void add_session_commands(CLI::App& app, Context& context) {
    auto* const login = app.add_subcommand("login", "Log in; the session is kept for the commands that follow");
    const auto words = std::make_shared<Login>();
    login->add_option("USER", words->user, "who logs in")->required()->type_name("");
    auto* const descriptor =
        login->add_option("--password-fd", words->source.descriptor, "read the password from this file descriptor");
    login->add_option("--password-file", words->source.file, "read it from this file of mode 0600")
        ->excludes(descriptor);
    login->callback([&context, words] {
        context.action = [&context, words] {
            const auto password = read_password(words->source, fmt::format("Password of {}: ", words->user));
            show_session(context, context.service().log_in(words->user, password));
            hurry_guard(context.port);
        };
    });

    app.add_subcommand("logout", "End the session")->callback([&context] {
        context.action = [&context] {
            if (is_commit_unconfirmed(context.port)) {
                throw Failure(ExitStatus::refused, "The last commit waits to be confirmed, and could not be taken back "
                                                   "without this session: `oltctl confirm` first.");
            }
            context.service().log_out();
        };
    });

    app.add_subcommand("whoami", "Who is logged in, and with which privilege")->callback([&context] {
        context.action = [&context] {
            // Any route that only a session may use tells whether it is still known.
            context.service().ask({.path = "test.echo.view", .method = "echo"});
            show_session(context, context.service().session());
        };
    });
}

} // namespace xpon::oltctl
