// What another process does to a database or as a peer, while a test looks on. The first argument names it; what it
// works with stands below OLT_ROOT. Prints "ready" when it has what it is to hold, and holds it until it is killed.

#include "tests/unit/platform/cfgdb/edits.hpp"
#include "tests/unit/platform/ipc/peer_thread.hpp"
#include "xpon/cfgdb/element_functions.hpp"

#include <csignal>
#include <cstdio>
#include <string_view>

#include <fmt/format.h>
#include <unistd.h>

namespace xpon {
namespace {

void say_ready() {
    std::puts("ready");
    std::fflush(stdout);
}

[[noreturn]] void hold() {
    say_ready();
    for (;;) {
        pause();
    }
}

/// Describes ONT 1/`ont` in the candidate and finds the users, who come with a database that was filled.
bool describe_ont(const std::string& ont) {
    const cfgdb::CfgDbWrapper client("CHILD");
    const auto number = static_cast<unsigned>(std::stoul(ont));
    test::apply(client, {test::edit_ont(1, number, fmt::format(R"({{"description":"{}"}})", ont))});
    return client.find_user_by_username("viewer").has_value() && !testing::Test::HasFailure();
}

void hold_writing() {
    const cfgdb::CfgDbWrapper client("CHILD");
    test::apply(client, {test::edit_hostname("olt-7")});
    cfgdb::in_write_transaction(test::database_of(client).environment(), [](cfgdb::WriteTransaction&) { hold(); });
}

void hold_reading() {
    const cfgdb::CfgDbWrapper client("CHILD");
    const cfgdb::ReadTransaction transaction(test::database_of(client).environment());
    hold();
}

void open_database() {
    say_ready();
    const cfgdb::CfgDbWrapper client("CHILD");
}

/// A peer that answers "die" by SIGKILL to itself, and with what it was sent to all else.
void answer_until_asked_to_die() {
    const ipc::PeerThread server(ipc::peer, [](const ipc::ServerRequest& request) {
        if (ipc::text_of(request.payload) == "die") {
            kill(getpid(), SIGKILL);
        }
        return ipc::PeerThread::echo_answer(request);
    });
    hold();
}

bool play(std::string_view role, const std::string& argument) {
    if (role == "describe-ont") {
        return describe_ont(argument);
    }
    const std::pair<std::string_view, void (*)()> roles[] = {
        {"hold-writing", hold_writing},
        {"hold-reading", hold_reading},
        {"open-database", open_database},
        {"mortal-peer", answer_until_asked_to_die},
    };
    for (const auto& [name, act] : roles) {
        if (name == role) {
            act();
            return true;
        }
    }
    return false;
}

} // namespace
} // namespace xpon

int main(int count, char** arguments) {
    return count >= 2 && xpon::play(arguments[1], count > 2 ? arguments[2] : "") ? 0 : 1;
}
