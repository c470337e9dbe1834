#include "client/oltctl/commands/context.hpp"
#include "client/oltctl/commands/syntax.hpp"
#include "client/oltctl/confirmation/guard.hpp"
#include "client/oltctl/failure.hpp"
#include "client/oltctl/output/terminal.hpp"
#include "client/oltctl/session/password.hpp"

#include <memory>
#include <string>

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

void add_session_commands(CommandSyntax program, Context& context) {
    const auto login = program.add_command("login", "Log in; the session is kept for the commands that follow");
    const auto words = std::make_shared<Login>();
    login.add_option("USER", words->user, "who logs in").required().type_name("");
    const auto descriptor =
        login.add_option("--password-fd", words->source.descriptor, "read the password from this file descriptor");
    login.add_option("--password-file", words->source.file, "read it from this file of mode 0600").excludes(descriptor);
    login.does(context, [&context, words] {
        const auto password = read_password(words->source, fmt::format("Password of {}: ", words->user));
        show_session(context, context.service().log_in(words->user, password));
        hurry_guard(context.port);
    });

    program.add_command("logout", "End the session").does(context, [&context] {
        if (is_commit_unconfirmed(context.port)) {
            throw Failure(ExitStatus::refused, "The last commit waits to be confirmed, and could not be taken back "
                                               "without this session: `oltctl confirm` first.");
        }
        context.service().log_out();
    });

    program.add_command("whoami", "Who is logged in, and with which privilege").does(context, [&context] {
        // Any route that only a session may use tells whether it is still known.
        context.service().ask({.path = "test.echo.view", .method = "echo"});
        show_session(context, context.service().session());
    });
}

} // namespace xpon::oltctl
