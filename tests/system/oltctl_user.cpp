#include "tests/system/oltctl_user.hpp"

#include <csignal>
#include <fstream>

namespace xpon::test {

void OltctlUser::SetUp() {
    std::filesystem::create_directory(runtime_folder());
}

std::string OltctlUser::run(const std::string& command) {
    const auto bin = std::filesystem::path(OLTCTL).parent_path().string() + ":" +
                     std::filesystem::path(OLT_SIM).parent_path().string() + ":/usr/bin:/bin";
    Process shell({"/bin/sh", "-c", "exec </dev/null; cd \"$XDG_RUNTIME_DIR\"; " + command},
                  {{"PATH", bin}, {"XDG_RUNTIME_DIR", runtime_folder()}, {"OLT_ROOT", olt_.root()}});
    status_ = shell.wait().value_or(-1);
    return shell.output();
}

void OltctlUser::log_in(const std::string& user) {
    std::ofstream(runtime_folder() / "password") << user << "\n";
    std::filesystem::permissions(runtime_folder() / "password", std::filesystem::perms(0600));
    run("oltctl login " + user + " --password-file password");
    ASSERT_EQ(status_, 0);
}

void OltctlUser::restart_daemon() {
    olt_.daemon().send_signal(SIGTERM);
    ASSERT_EQ(olt_.daemon().wait(), 0);
    EXPECT_EQ(olt_.next_notification(), shutting_down);
    olt_.start_daemon();
    olt_.wait_until_ready();
}

} // namespace xpon::test
